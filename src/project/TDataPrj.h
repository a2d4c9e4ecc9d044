#pragma once

#include "app/TTypes.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>

#include <functional>

class IDevice;
class TDataCfg;
class TDataCmd;
class TProg;

// The project: configurations and ONE project-wide ordered list of the commands of all configurations.
// A command's place in that list is its absolute position (APos), its place among its configuration's
// commands its position (Pos). Every operation holds the project's recursive mutex; object pointers handed
// out stay valid only while the caller holds it too (getMutex()) or until the next editing operation.
class TDataPrj : public QObject {
    Q_OBJECT
public:
    explicit TDataPrj(QObject* parent = nullptr);
    ~TDataPrj() override;

    TMutex& getMutex() const { return mutex; }

    // Ids and positions; -1 means none.
    int getPosCfgFromIdCfg(int idCfg) const;
    int getIdCfgFromPosCfg(int pos) const;
    TDataCfg* getCfgObject(int idCfg) const;
    int getIdCfgFromNameCfg(const QString& name) const;
    QString getNameCfgFromIdCfg(int idCfg) const;
    QStringList getCfgListName() const;
    QList<TDataCfg*> getCfgList() const;
    QList<TDataCmd*> getCmdList() const;
    int getAPosCmdFromIdCmd(int idCmd) const;
    int getIdCmdFromAPosCmd(int apos) const;
    TDataCmd* getCmdObjectFromIdCmd(int idCmd) const;
    TDataCmd* getCmdObjectFromAPos(int apos) const;
    int getPosCmdFromAPosCmd(int apos) const;
    int getIdCfgFromIdCmd(int idCmd) const;
    int getIdCfgFromAPosCmd(int apos) const;
    int getPosCfgFromIdCmd(int idCmd) const;
    QList<TDataCmd*> getCmdListCfg(int idCfg) const;
    TData getCmdData(int idCmd) const; // empty when there is no such command

    // Editing.
    int newCfg(const QString& name, const QString& desc, int pos);
    // A configuration of the model that is not part of the project (TDataCfg::isTransient): appended,
    // left out of getCfgList and getCfgListName, and edited without signals or the project's change flag.
    int newTransientCfg(const QString& name);
    // bind false leaves the command unbound and unchecked until updCmdObjectAll (loading a whole file).
    int newCmd(TData data, int pos, bool bind = true);
    void updCmdParam(int idCmd, const TData& param);
    void delCmd(int idCmd);
    void delCmdCfg(int idCfg);
    void delCfg(int idCfg);
    void delCmdDev(int idCmdSetDevice);
    void movCfg(int from, int to);
    void moveCmd(int idCmd, int delta);
    void enbCmd(int idCmd, bool on);
    void enbCmdCfg(int idCfg, bool on);
    void setCfgName(int idCfg, const QString& name);
    void setCfgDesc(int idCfg, const QString& desc);
    void setCfgStatus(int idCfg, TCodeCfgStatus status);
    TCodeCfgStatus getCfgStatus(int idCfg) const;
    bool existCmdErrorCfg(int idCfg) const;
    bool existCmdSelectCfg(int idCfg) const;
    bool existCmdDeviceCfg(int idCfg) const;

    // Project.
    void setPrjFileName(const QString& file);
    QString getPrjFileName() const;
    void setPrjName(const QString& name);
    QString getPrjName() const;
    QString getPrjWorkPath() const;
    void updPrjParam(const TData& param);
    TData getPrjParam() const;
    bool isOpenPrj() const;
    bool isChange() const;
    void setChange();
    void resetChange();
    void normPrjParam();
    void checkPrjParam();
    void updPrgDevList();
    void clrPrj();

    // Commands that may be inserted at a place.
    QStringList getSupportToolsCmdList();
    QStringList getSupportProgCmdList(int idCmd);
    QStringList getSupportDeviceCmdList(int idCmd);

    // Execution support: the next checked command of idCfg after idCmdPrev (from the start when < 0).
    TDataCmd* getNextCmd(int idCfg, int idCmdPrev) const;
    // The same, as a copy of its record taken under the lock; false when the configuration has no more.
    bool getNextCmdData(int idCfg, int idCmdPrev, TData& data) const;

    // Binding.
    void updCmdObject(int idCmd);
    void updCmdObjectAll();
    QString getProgName(int idCfg, int apos) const;
    QString getDeviceName(int idCfg, int apos) const;
    QString getGroupName(int idCfg, int apos, const QString& code) const;
    int getAPosCmdSetProg(int idCmd) const;
    int getAPosCmdSetDevice(int idCmd) const;

    // Family, device and programmer objects, cached by name and owned by the project.
    IDevice* createDevice(const QString& name, const QString& file);
    TProg* createProg(const QString& name);

    // Replace where family objects and programmer descriptions come from (tests plug in their own).
    using DeviceFactory = std::function<IDevice*(const QString& name, const QString& file)>;
    using ProgFactory = std::function<TProg*(const QString& name)>;
    void setDeviceFactory(DeviceFactory f);
    void setProgFactory(ProgFactory f);

signals:
    void signalChangePrj(bool changed);
    void signalChangeData(TCodeView code, TData data);

private:
    int aposOf(int idCmd) const;
    // Binds a command to its family, device and programmer objects and checks it.
    void bindCmd(TDataCmd* cmd, const QString& progName, const QString& deviceName);
    int posCfgOf(int idCfg) const;
    // Whether edits of this configuration stay out of the project's signals and change flag.
    bool isQuiet(int idCfg) const;
    int walkBack(int idCfg, int apos, const std::function<int(TDataCmd*)>& visit) const;
    void emitCmd(TCodeView code, int idCmd);
    void clearObjects();

    mutable TMutex mutex;
    QList<TDataCfg*> cfgList;
    QList<TDataCmd*> cmdList;
    mutable QHash<int, int> aposIndex; // command id to absolute position, while aposIndexValid
    mutable bool aposIndexValid = false;
    QString prjFileName, prjName, workPath;
    bool change = false;
    QHash<QString, IDevice*> deviceCache;
    QHash<QString, TProg*> progCache;
    DeviceFactory deviceFactory;
    ProgFactory progFactory;
};

extern TDataPrj ProjectData;
