#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "support/SimFixture.h"
#include "ui/TDialogAbout.h"
#include "ui/TDialogLanguage.h"
#include "ui/TDialogSettings.h"
#include "ui/TWgtSettingsConfirm.h"
#include "ui/TWgtSettingsHotKeys.h"
#include "ui/TWgtSettingsInterface.h"
#include "ui/TWgtSettingsProg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>

class TestGuiSettings : public QObject {
    Q_OBJECT
    QTemporaryDir dir;
    QString ini;

private slots:
    void initTestCase() {
        Lang.loadData(QStringLiteral(TARVELIX_DATA_DIR "/language/eng.lng"));
        ini = dir.filePath("t.ini");
        TSettings::setFileNameIniOverride(ini);
        AppData.loadData();
    }

    void pagesWriteTheirKeys() {
        TDialogSettings dlg;
        dlg.pageInterface->setColor(1, QColor("#123456"));
        dlg.pageInterface->setColor(8, QColor("#fefefe"));
        dlg.pageInterface->showTime->setChecked(false);
        dlg.pageInterface->showMSec->setChecked(true);
        dlg.pageInterface->clearLog->setChecked(false);
        dlg.pageInterface->iconsSet->setCurrentIndex(1);
        dlg.pageConfirm->quit->setChecked(false);
        dlg.pageConfirm->openLastPrj->setChecked(false);
        dlg.pageConfirm->process->setChecked(false);
        QVERIFY(dlg.pageConfirm->checkBeforeRun->isChecked()); // on unless the user turns it off
        dlg.pageConfirm->checkBeforeRun->setChecked(false);
        dlg.pageHotKeys->setKey(6, QKeySequence("F9")); // "Run"
        QCOMPARE(dlg.pageHotKeys->table()->item(6, 0)->text(), Lang.get(9));
        dlg.accept();

        QSettings s(ini, QSettings::IniFormat);
        QCOMPARE(s.value("/Interface/ExecLogColorCmd").toString(), QString("#123456"));
        QCOMPARE(s.value("/Interface/ExecLogColorBackground").toString(), QString("#fefefe"));
        QCOMPARE(s.value("/Interface/ExecLogColorTime").toString(), AppData.colorTime.name());
        QCOMPARE(s.value("/Interface/ExecLogShowTime").toBool(), false);
        QCOMPARE(s.value("/Interface/ExecLogShowMSec").toBool(), true);
        QCOMPARE(s.value("/Interface/ExecLogClear").toBool(), false);
        QCOMPARE(s.value("/Main/IconsSet").toInt(), 1);
        QCOMPARE(s.value("/Main/OpenLastPrj").toBool(), false);
        QCOMPARE(s.value("/Confirmation/Quit").toBool(), false);
        QCOMPARE(s.value("/Confirmation/SavePrj").toBool(), true);
        QCOMPARE(s.value("/Confirmation/Process").toBool(), false);
        QCOMPARE(s.value("/Main/CheckBeforeRun").toBool(), false);
        QCOMPARE(s.value("/HotKeyMain/Run").toString(), QString("F9"));
        QCOMPARE(s.value("/HotKeyMain/Quit").toString(), QString("Ctrl+Q"));
    }

    void aFreshPageShowsTheSavedValues() {
        TDialogSettings dlg;
        QCOMPARE(dlg.pageInterface->getColor(1), QColor("#123456"));
        QCOMPARE(dlg.pageInterface->showTime->isChecked(), false);
        QCOMPARE(dlg.pageConfirm->quit->isChecked(), false);
        auto* edit = dlg.pageHotKeys->table()->cellWidget(6, 1);
        QCOMPARE(edit->property("keySequence").value<QKeySequence>(), QKeySequence("F9"));
    }

    void cancelWritesNothing() {
        const QByteArray before = [&] {
            QFile f(ini);
            f.open(QIODevice::ReadOnly);
            return f.readAll();
        }();
        {
            TDialogSettings dlg;
            dlg.pageConfirm->quit->setChecked(true);
            dlg.reject();
        }
        QFile f(ini);
        f.open(QIODevice::ReadOnly);
        QCOMPARE(f.readAll(), before);
        QCOMPARE(AppData.confirmQuit, false);
    }

    void programmersAreWrittenAsRegistries() {
        TDialogSettings dlg;
        QTableWidget* names = dlg.pageProg->names;
        const int r = names->rowCount();
        names->insertRow(r);
        names->setItem(r, 0, new QTableWidgetItem("Bench"));
        names->setItem(r, 1, new QTableWidgetItem("/dev/ttyUSB3"));
        names->setItem(r, 2, new QTableWidgetItem("Simulator"));
        names->insertRow(r + 1); // a row without a name is dropped
        dlg.accept();
        QSettings s(ini, QSettings::IniFormat);
        QCOMPARE(s.value(QString("/ProgNameList/Name%1").arg(r)).toStringList(),
                 QStringList({"0", "Bench", "/dev/ttyUSB3", "Simulator"}));
        QVERIFY(!s.contains(QString("/ProgNameList/Name%1").arg(r + 1)));
    }

    void languageDialogListsTheLanguageFiles() {
        const QString folder = dir.filePath("language");
        QDir().mkpath(folder);
        for (const char* name : {"eng.lng", "deu.lng", "notes.txt"})
            QFile(folder + "/" + name).open(QIODevice::WriteOnly);
        AppData.pathLanguage = folder;
        AppData.language = "eng.lng";
        TDialogLanguage dlg;
        QCOMPARE(dlg.list()->count(), 2);
        QCOMPARE(dlg.list()->currentItem()->text(), QString("eng.lng"));
        dlg.list()->setCurrentRow(0);
        dlg.accept();
        QCOMPARE(QSettings(ini, QSettings::IniFormat).value("/Main/Language").toString(), QString("deu.lng"));
    }

    void aboutBoxNamesVersionAndDate() {
        TDialogAbout dlg;
        QVERIFY(dlg.text().contains("<h2>Tarvelix</h2>"));
        QVERIFY(dlg.text().contains("Version 0.0.3, 19.10.2023"));
    }

    void identifyAndResetTalkToTheProgrammer() {
        SimFixture sim;
        QVERIFY(sim.start());
        AppData.progType.clear();
        AppData.progName.clear();
        AppData.progType.append("Simulator", QStringLiteral(TARVELIX_DATA_DIR "/progs/sim.cfg"));
        AppData.progName.append(false, "Bench", sim.link(), "Simulator");
        AppData.progName.append(false, "Gone", sim.path("nothing"), "Simulator");
        TWgtSettingsProg page;
        page.names->setCurrentCell(0, 0);
        page.identify();
        QCOMPARE(page.resultText(), Lang.get(132).arg("Bench", "Tarvelix programmer simulator 1.0"));
        page.reset();
        QCOMPARE(page.resultText(), Lang.get(133).arg("Bench"));
        page.names->setCurrentCell(1, 0);
        page.identify();
        QVERIFY(page.resultText().startsWith(Lang.get(134).arg("Gone", QString())));
        // An edited row is checked as shown, and the registries keep their saved state.
        page.names->item(1, 1)->setText(sim.link());
        page.identify();
        QCOMPARE(page.resultText(), Lang.get(132).arg("Gone", "Tarvelix programmer simulator 1.0"));
        QCOMPARE(AppData.progName.getData("Gone").port, sim.path("nothing"));
    }
};

QTEST_MAIN(TestGuiSettings)
#include "test_gui_settings.moc"
