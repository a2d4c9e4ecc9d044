#include "TestFamily.h"

#include "project/TDataCmd.h"
#include "project/TDataPrj.h"

#include <QRandomGenerator>
#include <QThread>
#include <QtTest>

#include <atomic>

// A worker walks a configuration while the editor changes the project, as when a run is going on and
// the user edits another configuration (or the same one).
class TestModelThreads : public QObject {
    Q_OBJECT

private slots:
    void walkerAndEditorShareTheModel() {
        TDataPrj prj;
        TestWorld world(prj);
        const int a = prj.newCfg("A", "", -1), b = prj.newCfg("B", "", -1);
        prj.newCmd(cmd(a, "set_prog", {{"prog", "progA"}}), -1);
        for (int i = 0; i < 30; ++i)
            prj.newCmd(cmd(i % 2 ? a : b, i % 3 ? "delay" : "set_vcc", {{"n", i}}), -1);

        std::atomic<bool> done{false};
        std::atomic<int> walks{0};
        QThread* walker = QThread::create([&] {
            while (!done) {
                int prev = -1;
                TData data;
                // Copies taken under the lock are safe whatever the editor does next.
                while (prj.getNextCmdData(a, prev, data)) {
                    if (data.value("id_cfg").toInt() != a) qFatal("walked into another configuration");
                    prev = data.value("id_cmd").toInt();
                    if (prj.getAPosCmdFromIdCmd(prev) < 0)
                        break; // deleted meanwhile: a real run would end here too
                }
                // Pointers are used only while the project lock is held.
                {
                    TLocker lock(prj.getMutex());
                    for (TDataCmd* c = prj.getNextCmd(a, -1); c; c = prj.getNextCmd(a, c->getUIN()))
                        c->getData();
                }
                ++walks;
            }
        });
        walker->start();

        QRandomGenerator rng(7);
        for (int i = 0; i < 1500; ++i) {
            const int n = prj.getCmdList().size();
            const int id = prj.getIdCmdFromAPosCmd(n ? int(rng.bounded(n)) : 0);
            switch (rng.bounded(5)) {
            case 0:
                prj.newCmd(cmd(rng.bounded(2) ? a : b, "delay"), int(rng.bounded(n + 1)));
                break;
            case 1:
                prj.moveCmd(id, rng.bounded(2) ? 1 : -1);
                break;
            case 2:
                prj.enbCmd(id, rng.bounded(2));
                break;
            case 3:
                if (n > 10) prj.delCmd(id);
                break;
            default:
                prj.updCmdParam(id, {{"n", i}});
                break;
            }
        }
        done = true;
        walker->wait();
        delete walker;
        QVERIFY(walks > 0);
    }
};

QTEST_GUILESS_MAIN(TestModelThreads)
#include "test_model_threads.moc"
