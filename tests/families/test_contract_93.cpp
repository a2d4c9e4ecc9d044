#include "support/ChipKit.h"
#include "support/FamilyContract.h"

#include "devices/TDev93C.h"
#include "devices/TDeviceList.h"

// The 93 series: a 93C46 of 128 bytes. The family is not offered by the catalogue and has no read or
// write packets yet, so only the refusal applies: a write, whatever algorithm its description names,
// fails with the family's text and sends nothing. Once the family has its packets, the write must fail
// on an unknown algorithm with the unknown-algorithm text instead, and pending goes.
class TestContract93 : public FamilyContract {
    Q_OBJECT
    Space space() const override {
        Space s;
        s.chip = "93C46";
        s.description = "mw/93C46.dev";
        s.writeFile = "file_write", s.verifyFile = "file_verify", s.readFile = "file_read";
        s.size = 128;
        s.writeChunk = 1;
        s.writeCmd = 0; // none yet
        s.algWrite = "alg_write";
        s.unknownAlgText = Lang.get(486);
        s.pending = "the 93 series has no read or write packets yet";
        return s;
    }

    // The description as the catalogue would read it, served by the family directly.
    void offerFamily() override {
        QStringList lines;
        for (const QByteArray& line : TestFiles::readFile(devices + "/" + space().description).split('\n'))
            if (!line.isEmpty() && !line.startsWith('#')) lines << QString::fromUtf8(line);
        ChipKit::useFamily({{space().chip, TDeviceList::getParamData(lines)}}, TCmdFamily::create<TDev93C>);
    }
};

QTEST_GUILESS_MAIN(TestContract93)
#include "test_contract_93.moc"
