#pragma once

#include <QTreeWidget>

// The command list of one configuration: check mark, display name and parameters of each command, as
// its family shows them; commands that cannot run are marked, the reason in their tool tip. Edits the
// user starts here are handed to the window as signals, which carries them out on the model.
class TWgtCmdList : public QTreeWidget {
    Q_OBJECT
public:
    explicit TWgtCmdList(int idCfg, QWidget* parent = nullptr);

    int getIdCfg() const { return idCfg; }
    // The same rows now stand for another configuration id (a project rebuilt from its file).
    void setIdCfg(int id);
    // Rebuilds every row from the model, keeping the current row.
    void refresh();
    int currentIdCmd() const;
    void setCurrentIdCmd(int idCmd);
    // The selected commands in list order; the current one when none is selected.
    QList<int> selectedIdCmds() const;
    void selectIdCmds(const QList<int>& ids);

signals:
    void signalEditCmd(int idCmd);
    void signalCheckCmd(int idCmd, bool on);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private slots:
    void slotItemChanged(QTreeWidgetItem* item, int column);

private:
    void fillItem(QTreeWidgetItem* item, class TDataCmd* cmd);
    QTreeWidgetItem* itemOf(int idCmd) const;

    int idCfg;
    bool filling = false;
};
