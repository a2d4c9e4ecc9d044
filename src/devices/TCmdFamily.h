#pragma once

#include "devices/IDevice.h"
#include "devices/TCmdTable.h"

class TFormCmd;

// Where a memory space lies, by keys of the device's description: its first address (none: it starts at
// 0) and its size.
struct TSpaceKeys {
    const char* begin;
    const char* size;
};
using TSpaces = QVector<TSpaceKeys>;

// The editing side of a family of commands, driven by its command table: the offered commands, and the
// defaults, views, forms and checks of the shared kinds (TCmdTable) over the row's memory space, and of
// the family's own kinds through the handling their rows name (TCmdOwn). The family adds, where they
// differ from the device's one range, its memory spaces.
class TCmdFamily : public IDevice {
    Q_OBJECT
public:
    // The factory function of family F, as the catalogue's family table holds it.
    template <class F> static IDevice* create(const QString& code, const TData& param) {
        return new F(code, param);
    }

    bool supportCmd(const QString& code) const override;
    QStringList getSupportCmdList() const override;
    void getDefaultCmdParam(TData& param) override;
    QString getViewCmdParam(const TData& param, QWidget* parent) const override;
    QWidget* getFormCmdParam(const TData& param) const override;
    bool checkCmdParam(const TData& param) override;

    // A key of the device's description, for the handling of the family's own kinds.
    QVariant devItem(const char* key) const { return devParam.value(QLatin1String(key)); }
    qint64 devValue(const char* key) const { return devItem(key).toLongLong(); }

protected:
    // rows: the family's table, in the order its commands are offered; spaces: its memory spaces, by the
    // rows' space numbers; offered: the codes of the rows this device has, in that order (all when empty).
    TCmdFamily(const QString& code, const TData& param, const TCmdRows& rows,
               const TSpaces& spaces = {{"addr_begin", "size"}}, const QStringList& offered = QStringList());

    const TCmdRows& rows;
    const QStringList cmdList;

private:
    const TCmdRow* rowOf(const TData& p) const;
    // The handling of an own row; one with every hook empty for the others.
    static const TCmdOwn& ownOf(const TCmdRow& row);
    // The address range of a row's memory space.
    void spaceRange(const TCmdRow& row, qint64& begin, qint64& size) const;

    const TSpaces spaces;
};
