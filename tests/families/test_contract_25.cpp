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
};

QTEST_GUILESS_MAIN(TestContract25)
#include "test_contract_25.moc"
