#include "support/FamilyContract.h"

// AVR EEPROM: the ATmega328P's 1 KiB, after its flash in the simulator's image, written in one piece.
class TestContractAvrEeprom : public FamilyContract {
    Q_OBJECT
    Space space() const override {
        Space s;
        s.chip = "ATmega328P";
        s.description = "avr/ATmega328P.dev";
        s.writeFile = "eeprom_file_write", s.verifyFile = "eeprom_file_verify",
        s.readFile = "eeprom_file_read";
        s.size = 1024;
        s.imageOffset = 32768;
        s.writeChunk = 4096; // the programmer's largest payload
        s.writeCmd = 6, s.writeHeader = 2;
        s.algWrite = "alg_eeprom_write";
        s.unknownAlgText = Lang.get(483).arg(9);
        return s;
    }
};

QTEST_GUILESS_MAIN(TestContractAvrEeprom)
#include "test_contract_avr_eeprom.moc"
