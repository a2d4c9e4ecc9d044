#include "project/TCmdCode.h"

#include "project/CTagCmdCode.h"

TCmdCode CmdCode;

namespace {
struct Row {
    const char* code;
    const char* name;
    TCmdCode::Family family;
};

const Row rows[] = {
    {CTagCmdCode::process, "Process", TCmdCode::FamilyTools},
    {CTagCmdCode::jamp, "Jamp", TCmdCode::FamilyTools},
    {CTagCmdCode::counter, "Counter", TCmdCode::FamilyTools},
    {CTagCmdCode::delay, "Delay", TCmdCode::FamilyTools},
    {CTagCmdCode::pause, "Pause", TCmdCode::FamilyTools},
    {CTagCmdCode::stop, "Stop", TCmdCode::FamilyTools},
    {CTagCmdCode::execute, "Execute", TCmdCode::FamilyTools},
    {CTagCmdCode::calc_crc, "Calc CRC", TCmdCode::FamilyTools},
    {CTagCmdCode::set_prog, "Set Prog", TCmdCode::FamilyTools},
    {CTagCmdCode::set_device, "Set Device", TCmdCode::FamilyProg},
    {CTagCmdCode::auto_detect, "Auto Detect", TCmdCode::FamilyProg},
    {CTagCmdCode::gen, "Generator", TCmdCode::FamilyProg},
    {CTagCmdCode::set_io, "Set I/O", TCmdCode::FamilyProg},
    {CTagCmdCode::set_vcc, "Set Vcc", TCmdCode::FamilyProg},
    {CTagCmdCode::set_vpp, "Set Vpp", TCmdCode::FamilyProg},
    {CTagCmdCode::set_vicc, "Set VIcc", TCmdCode::FamilyProg},
    {CTagCmdCode::set_vipp, "Set VIpp", TCmdCode::FamilyProg},
    {CTagCmdCode::reset, "Reset", TCmdCode::FamilyProg},
    {CTagCmdCode::ident, "Identification", TCmdCode::FamilyDevice},
    {CTagCmdCode::set_clk, "Set CLK", TCmdCode::FamilyDevice},
    {CTagCmdCode::set_addr, "Set Address", TCmdCode::FamilyDevice},
    {CTagCmdCode::erase, "Erase", TCmdCode::FamilyDevice},
    {CTagCmdCode::test_empty, "Test Empty", TCmdCode::FamilyDevice},
    {CTagCmdCode::erase_blocks, "Erase (blocks)", TCmdCode::FamilyDevice},
    {CTagCmdCode::test_empty_blocks, "Test Empty (blocks)", TCmdCode::FamilyDevice},
    {CTagCmdCode::test_empty_flash, "Test Empty Flash", TCmdCode::FamilyDevice},
    {CTagCmdCode::test_empty_eeprom, "Test Empty EEPROM", TCmdCode::FamilyDevice},
    {CTagCmdCode::char_write, "Char Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::char_verify, "Char Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::data_read, "Data Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::data_write, "Data Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::data_verify, "Data Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::file_read, "File Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::file_write, "File Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::file_verify, "File Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::flash_char_write, "Flash Char Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::flash_char_verify, "Flash Char Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::flash_data_read, "Flash Data Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::flash_data_write, "Flash Data Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::flash_data_verify, "Flash Data Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::flash_file_read, "Flash File Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::flash_file_write, "Flash File Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::flash_file_verify, "Flash File Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::eeprom_char_write, "EEPROM Char Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::eeprom_char_verify, "EEPROM Char Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::eeprom_data_read, "EEPROM Data Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::eeprom_data_write, "EEPROM Data Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::eeprom_data_verify, "EEPROM Data Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::eeprom_file_read, "EEPROM File Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::eeprom_file_write, "EEPROM File Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::eeprom_file_verify, "EEPROM File Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::fuse_read, "Fuse Bits Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::fuse_write, "Fuse Bits Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::fuse_verify, "Fuse Bits Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::lock_read, "Lock Bits Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::lock_write, "Lock Bits Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::lock_verify, "Lock Bits Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::status_reg_read, "Status Reg Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::status_reg_write, "Status Reg Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::status_reg_verify, "Status Reg Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::security_reg_erase, "Security Reg Erase", TCmdCode::FamilyDevice},
    {CTagCmdCode::security_reg_test_empty, "Security Reg Test Empty", TCmdCode::FamilyDevice},
    {CTagCmdCode::security_reg_read, "Security Reg Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::security_reg_write, "Security Reg Write", TCmdCode::FamilyDevice},
    {CTagCmdCode::security_reg_verify, "Security Reg Verify", TCmdCode::FamilyDevice},
    {CTagCmdCode::unique_id_read, "Unique ID Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::sfdp_reg_read, "SFDP Reg Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::osccal_read, "OSCCAL Read", TCmdCode::FamilyDevice},
    {CTagCmdCode::unlock, "Unlock", TCmdCode::FamilyDevice},
    {CTagCmdCode::lock, "Lock", TCmdCode::FamilyDevice},
    {CTagCmdCode::leave, "Leave", TCmdCode::FamilyDevice},
};
} // namespace

TCmdCode::TCmdCode() {
    for (const Row& r : rows) {
        names.insert(r.code, r.name);
        families.insert(r.code, r.family);
        codes.append(r.code);
    }
}

QString TCmdCode::getName(const QString& code) const {
    return names.value(code);
}

QString TCmdCode::getCode(const QString& name) const {
    for (auto it = names.constBegin(); it != names.constEnd(); ++it)
        if (it.value() == name) return it.key();
    return QString();
}

TCmdCode::Family TCmdCode::getFamily(const QString& code) const {
    return families.value(code, FamilyNone);
}
