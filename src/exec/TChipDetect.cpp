#include "exec/TChipDetect.h"

#include "devices/TSignature.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TCmdCode.h"
#include "project/TPrjBuilder.h"

TChipDetect::TChipDetect(const QString& prog) : prog(prog), families(TSignature::getAutoFamilyList()) {}

bool TChipDetect::buildNext(TDataPrj& prj, int idCfg) {
    if (next >= families.size()) return false;
    reached = false;
    TPrjBuilder::addCmd(prj, idCfg, CTagCmdCode::set_prog, {{CTagCmdToolsSetProg::prog, prog}});
    // Without a stop, a family that finds nothing says so and the run ends well.
    TPrjBuilder::addCmd(
        prj, idCfg, CTagCmdCode::auto_detect,
        {{CTagCmdProgAutoDetect::name, families.at(next++)}, {"stop", false}, {"execute", false}});
    return true;
}

void TChipDetect::event(TCodeExec code, const QString& text, const QString& param) {
    if (code == ExecCmdStart && text == CmdCode.getName(CTagCmdCode::auto_detect)) reached = true;
    if (code == ExecResult && !param.isEmpty()) parts.append(param);
}

bool TChipDetect::wantsMore() const {
    return parts.isEmpty() && reached && next < families.size();
}
