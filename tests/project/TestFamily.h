#pragma once

#include "devices/IDevice.h"
#include "link/TProg.h"
#include "project/TDataPrj.h"

#include <QSet>
#include <QTemporaryDir>
#include <QTextStream>

// A small command family for model tests: supports a fixed set of codes and accepts any parameters
// unless they carry "bad".
class TestFamily : public IDevice {
public:
    TestFamily(const QString& code, const QStringList& codes) : IDevice(code), codes(codes) {}
    bool supportCmd(const QString& c) const override { return codes.contains(c); }
    QStringList getSupportCmdList() const override { return codes; }
    void getDefaultCmdParam(TData&) override {}
    QString getViewCmdName(const TData&) const override { return QString(); }
    QString getViewCmdParam(const TData&, QWidget*) const override { return QString(); }
    QWidget* getFormCmdParam(const TData&) const override { return nullptr; }
    TData getChangedParam(const TData& p) const override { return p; }
    void normCmdParam(TData&) override {}
    bool checkCmdParam(const TData& p) override { return !p.contains("bad"); }
    bool checkCmdSetDeviceParam(const TData&) override { return true; }
    void getDefaultParamCmdSetDevice(TData&) override {}
    QWidget* getWgtCmdSetDeviceParam(const TData&) override { return nullptr; }
    QByteArray getCmdSetDeviceExec(const TData&) override { return QByteArray(); }
    IDeviceExec* createExecObject(const TData&) override { return nullptr; }

private:
    QStringList codes;
};

// Plugs test families and programmers into a project: families "Tools" and "Prog", devices "chipA" and
// "chipB" (which serve different codes), and programmers "progA" (supports everything) and "progB"
// (supports only set_vcc and set_device).
class TestWorld {
public:
    explicit TestWorld(TDataPrj& prj) {
        const QString all = dir.filePath("all.cfg"), few = dir.filePath("few.cfg");
        writeProg(all, {"set_vcc", "set_vpp", "set_device", "auto_detect", "reset", "erase", "data_read",
                        "file_write", "ident"});
        writeProg(few, {"set_vcc", "set_device"});
        prj.setProgFactory([=](const QString& name) -> TProg* {
            if (name == "progA") return new TProg(all);
            if (name == "progB") return new TProg(few);
            return nullptr;
        });
        prj.setDeviceFactory([](const QString& name, const QString&) -> IDevice* {
            if (name == "Tools")
                return new TestFamily(name, {"delay", "jamp", "execute", "set_prog", "pause", "stop"});
            if (name == "Prog")
                return new TestFamily(name, {"set_vcc", "set_vpp", "set_device", "auto_detect", "reset"});
            if (name == "chipA") return new TestFamily(name, {"erase", "data_read", "file_write"});
            if (name == "chipB" || name == "DevAuto") return new TestFamily(name, {"ident"});
            return nullptr;
        });
    }

    static void writeProg(const QString& file, const QStringList& codes) {
        QFile f(file);
        f.open(QIODevice::WriteOnly);
        QTextStream out(&f);
        out << "[Commands]\n";
        for (const QString& c : codes)
            out << c << "=true\n";
    }

    QTemporaryDir dir;
};

inline TData cmd(int idCfg, const QString& code, const TData& extra = {}, int status = 1) {
    TData d = extra;
    d.insert("id_cfg", idCfg);
    d.insert("cmd", code);
    d.insert("status", status);
    return d;
}
