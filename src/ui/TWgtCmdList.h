#pragma once

#include <QTreeWidget>

// The command list of one configuration: check mark, display name and parameters of each command, as
// its family shows them; commands that cannot run are marked, the reason in their tool tip.
class TWgtCmdList : public QTreeWidget {
    Q_OBJECT
public:
    explicit TWgtCmdList(int idCfg, QWidget* parent = nullptr);

    int getIdCfg() const { return idCfg; }
    // Rebuilds every row from the model, keeping the current row.
    void refresh();
    int currentIdCmd() const;

private slots:
    void slotItemChanged(QTreeWidgetItem* item, int column);

private:
    void fillItem(QTreeWidgetItem* item, class TDataCmd* cmd);

    const int idCfg;
    bool filling = false;
};
