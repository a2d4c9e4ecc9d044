#include "support/FamilyContract.h"

// AVR flash: an ATmega328P, erased first, its 128-byte page buffer loaded a page at a time.
class TestContractAvrFlash : public FamilyContract {
    Q_OBJECT
    Space space() const override {
        Space s;
        s.chip = "ATmega328P";
        s.description = "avr/ATmega328P.dev";
        s.erase = "erase";
        s.writeFile = "flash_file_write", s.verifyFile = "flash_file_verify", s.readFile = "flash_file_read";
        s.size = 32768;
        s.writeChunk = 128;
        s.writeCmd = 4, s.writeHeader = 2; // 16-bit address
        s.algWrite = "alg_flash_write";
        s.unknownAlgText = Lang.get(483).arg(9);
        return s;
    }
};

QTEST_GUILESS_MAIN(TestContractAvrFlash)
#include "test_contract_avr_flash.moc"
