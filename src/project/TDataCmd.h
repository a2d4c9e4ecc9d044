#pragma once

#include "app/TTypes.h"


class IDevice;
class TProg;

// One command: its code, check mark, validity, the family's parameters and the objects it is bound to.
class TDataCmd {
public:
    TDataCmd(bool enable, int cfgId, const QString& code, const TData& param);

    static void resetUINCounter();

    int getUIN() const { return uin; }
    void setEnable(bool on);
    bool getEnable() const;
    void setValidDev(bool on);
    bool getValidDev() const;
    void setValidParam(bool on);
    bool getValidParam() const;
    void setCfgID(int id);
    int getCfgID() const;
    QString getCmdCode() const;

    TData getParam() const;
    void setParam(const TData& param); // replaces the parameters (any id_cmd dropped)
    void clearParam();
    TData getData() const;           // the parameters plus the six model keys
    void setData(const TData& data); // takes status, id_cfg and cmd; the rest become the parameters

    void setGroupObject(IDevice* obj);
    IDevice* getGroupObject() const;
    void setDeviceObject(IDevice* obj);
    IDevice* getDeviceObject() const;
    void setProgObject(TProg* obj);
    TProg* getProgObject() const;

    void normParam();  // brings the parameters into the family's current form
    bool checkParam(); // the family's check, stored as valid_param

    // Removes the six model keys from a record.
    static void removeModelKeys(TData& data);

private:
    mutable TMutex mutex;
    const int uin;
    int cfgId;
    bool enable, validDev = false, validParam = false;
    QString cmdCode;
    TData param;
    IDevice* groupObject = nullptr;
    IDevice* deviceObject = nullptr;
    TProg* progObject = nullptr;
};
