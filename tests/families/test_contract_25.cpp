#include "support/FamilyContract.h"

// The 25 series: a W25Q80RV, erased first, programmed in 256-byte pages.
class TestContract25 : public FamilyContract {
    Q_OBJECT
    Space space() const override {
        Space s;
        s.chip = "W25Q80RV";
        s.description = "spi/W25Q80RV.dev";
        s.erase = "erase";
        s.writeFile = "file_write", s.verifyFile = "file_verify", s.readFile = "file_read";
        s.size = 1048576;
        s.writeChunk = 256;
        s.writeCmd = 4, s.writeHeader = 4; // page program opcode, three address bytes
        s.writePrefix = "02";              // the erase goes in the same packet
        s.algWrite = "alg_flash_write";
        // The family has no text for an algorithm it does not have; the worker names the command.
        s.unknownAlgText = Lang.get(1215).arg("File Write");
        return s;
    }

private slots:
    // An erase key without its block size erases nothing, and the log names the command that failed.
    void malformedEraseKeyIsNamed() {
        QVERIFY(patchDescription("\nerase=s|C7|1048576", "\nerase=s|C7"));
        const Run r = run({cmd("erase")}, blankImage());
        devices = QStringLiteral(TARVELIX_DATA_DIR "/devices");
        QCOMPARE(r.status, 1);
        QVERIFY2(r.output.contains(Lang.get(1215).arg("Erase")), qPrintable(r.output));
        QCOMPARE(r.frames.filter(QRegularExpression("^C0 04 ")), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestContract25)
#include "test_contract_25.moc"
