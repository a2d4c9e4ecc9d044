#pragma once

#include "app/TTypes.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QStringList>

class IDeviceExec;
class TFormCmd;
class QWidget;

// The editing face of a command family: one object per selected device (or per family for the
// programmer and tools commands). It supplies defaults, checks, views and forms of its commands and
// creates the executor that runs one of them.
class IDevice : public QObject {
    Q_OBJECT
public:
    explicit IDevice(const QString& code, QObject* parent = nullptr);
    ~IDevice() override;

    virtual bool supportCmd(const QString& code) const = 0;
    virtual QStringList getSupportCmdList() const = 0;
    virtual void getDefaultCmdParam(TData& param) = 0;
    virtual QString getViewCmdParam(const TData& param, QWidget* parent) const = 0;
    virtual QWidget* getFormCmdParam(const TData& param) const = 0;
    virtual bool checkCmdParam(const TData& param) = 0;
    // The command's name from the command codes list.
    virtual QString getViewCmdName(const TData& param) const;
    // The parameters as the form handed out last holds them (param itself without a form).
    virtual TData getChangedParam(const TData& param) const;
    virtual void normCmdParam(TData& param);
    // The settings a set-device command carries for the device and the payload built from them: none
    // unless the family has some.
    virtual bool checkCmdSetDeviceParam(const TData& param);
    virtual void getDefaultParamCmdSetDevice(TData& param);
    virtual QWidget* getWgtCmdSetDeviceParam(const TData& param);
    virtual QByteArray getCmdSetDeviceExec(const TData& param);
    // A new executor for the command; the caller owns it.
    virtual IDeviceExec* createExecObject(const TData& param) = 0;
    // Why the family's command is not offered for this device; empty when there is nothing particular.
    virtual QString getNotSupportedText(const QString& code) const;
    // The reason a command named name cannot run on group (which may be null).
    static QString notSupportedText(const IDevice* group, const QString& code, const QString& name);

    void setDevParam(const TData& param) { devParam = param; }
    TData getDevParam() const { return devParam; }
    QString getDeviceCode() const { return devCode; }
    void setDevDesc(const QStringList& desc) { devDesc = desc; }
    QStringList getDevDesc() const { return devDesc; }
    bool getResetStatus() const;
    QString getDevConnect() const;

protected:
    // Forms: the family hands out a TFormCmd and reads the edits back from the one handed out last, which
    // the dialog that shows it owns.
    QWidget* keepForm(TFormCmd* form) const;
    TData formParam(const TData& param) const;

    TData devParam;
    QString devCode;
    QStringList devDesc;

private:
    mutable QPointer<TFormCmd> lastForm;
};
