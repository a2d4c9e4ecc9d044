#include "support/FamilyContract.h"

// The 24 series: a 24C16, one address byte, 16-byte pages written as they are.
class TestContract24 : public FamilyContract {
    Q_OBJECT
    Space space() const override {
        Space s;
        s.chip = "24C16";
        s.description = "i2c/24C16.dev";
        s.writeFile = "file_write", s.verifyFile = "file_verify", s.readFile = "file_read";
        s.size = 2048;
        s.writeChunk = 16;
        s.writeCmd = 4, s.writeHeader = 2; // select byte, one address byte
        s.algWrite = "alg_write";
        s.unknownAlgText = Lang.get(483).arg(9);
        return s;
    }
};

QTEST_GUILESS_MAIN(TestContract24)
#include "test_contract_24.moc"
