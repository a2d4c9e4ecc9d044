#pragma once

#include "devices/IDevice.h"
#include "devices/TCmdTable.h"

class TFormCmd;

// The editing side of a chip family, driven by its command table: the offered commands, and the
// defaults, views, forms and checks of the shared kinds (TCmdTable) over the row's memory space. The
// family adds its own kinds through the own* hooks, and its memory spaces and set-device settings where
// they differ from the usual ones.
class TDevFamily : public IDevice {
    Q_OBJECT
public:
    bool supportCmd(const QString& code) const override;
    QStringList getSupportCmdList() const override;
    void getDefaultCmdParam(TData& param) override;
    QString getViewCmdParam(const TData& param, QWidget* parent) const override;
    QWidget* getFormCmdParam(const TData& param) const override;
    bool checkCmdParam(const TData& param) override;

    // The usual set-device settings: the clock of the device's pin connection.
    void getDefaultParamCmdSetDevice(TData& param) override;
    QWidget* getWgtCmdSetDeviceParam(const TData& param) override;
    // The nine bytes every family sends (docs/protocol.md): type code (16 bits), cfg_hw, the family's
    // byte, clock (32 bits), delay. A command without a clock of its own takes the connection's default.
    QByteArray getCmdSetDeviceExec(const TData& param) override;

protected:
    // offered: the codes of rows the device has, in the table's order (all rows by default).
    TDevFamily(const QString& code, const TData& param, const TCmdRows& rows,
               const QStringList& offered = QStringList());

    // The address range of a row's memory space: addr_begin and size of the device by default.
    virtual void spaceRange(const TCmdRow& row, qint64& begin, qint64& size) const;
    // The family's own kinds (TCmdKind::Own), each called for a row TCmdTable does not handle.
    virtual void ownDefaults(const TCmdRow& row, TData& p);
    virtual QString ownView(const TCmdRow& row, const TData& p) const;
    virtual TFormCmd* ownForm(const TCmdRow& row, const TData& p) const;
    virtual bool ownCheck(const TCmdRow& row, const TData& p) const;
    // The third byte of the set-device payload: what the family's bus needs beyond clock and delay.
    virtual unsigned int familyByte(const TData& setDevice) const;

    qint64 devValue(const char* key) const { return devParam.value(QLatin1String(key)).toLongLong(); }
    const TCmdRow* rowOf(const TData& p) const;

    const TCmdRows& rows;
    const QStringList cmdList;
};
