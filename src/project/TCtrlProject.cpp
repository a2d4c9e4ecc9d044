#include "project/TCtrlProject.h"

#include "app/TFileSave.h"
#include "devices/TSignature.h"
#include "project/CTagCmdCode.h"
#include "project/CTagPrj.h"
#include "project/TDataCfg.h"
#include "project/TDataCmd.h"
#include "project/TDataPrj.h"
#include "project/TPrjText.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

int TCtrlProject::load(const QString& fileName, TDataPrj* prj) {
    QByteArray data;
    if (!file_to_data(fileName, data)) return Unreadable;
    if (data.isEmpty())
        create_empty_project(prj);
    else if (!data_to_project(data, prj))
        return InvalidJson;
    const QFileInfo info(fileName);
    prj->updPrjParam(
        TData{{CTagPrj::prj_file, info.absoluteFilePath()}, {CTagPrj::work_path, info.absolutePath()}});
    return Loaded;
}

bool TCtrlProject::file_to_data(const QString& fileName, QByteArray& data) {
    QFile f(fileName);
    if (!f.open(QIODevice::ReadOnly)) {
        errorText = f.errorString();
        return false;
    }
    data = f.readAll();
    return true;
}

bool TCtrlProject::data_to_project(const QByteArray& data, TDataPrj* prj) {
    QJsonParseError err;
    const QJsonDocument doc = QJsonDocument::fromJson(data, &err);
    if (err.error != QJsonParseError::NoError) {
        errorText = err.errorString();
        return false;
    }
    const QJsonValue cfgs = doc.object().value(CTagPrj::configurations);
    if (!cfgs.isArray()) return true;
    for (const QJsonValue& cfgValue : cfgs.toArray()) {
        if (!cfgValue.isObject()) continue;
        const QJsonObject cfg = cfgValue.toObject();
        const int idCfg =
            prj->newCfg(cfg.value(CTagCfg::name).toString(), cfg.value(CTagCfg::description).toString(), -1);
        const QJsonValue cmds = cfg.value(CTagCfg::commands);
        if (!cmds.isArray()) continue;
        for (const QJsonValue& cmdValue : cmds.toArray()) {
            if (!cmdValue.isObject()) continue;
            const QJsonObject cmd = cmdValue.toObject();
            TData record;
            for (auto it = cmd.constBegin(); it != cmd.constEnd(); ++it)
                record.insert(it.key(), it.value().toString());
            record.insert(CTagCmd::id_cfg, idCfg);
            prj->newCmd(record, -1, false);
        }
    }
    // Bound and checked once all commands exist, in one pass: commands may refer to commands and
    // configurations further down the file.
    prj->updCmdObjectAll();
    return true;
}

void TCtrlProject::create_empty_project(TDataPrj* prj) {
    prj->newCfg(QStringLiteral("Config"), QString(), -1);
}

namespace {

QString fieldText(const QString& key, const QString& value) {
    return QStringLiteral("\"%1\": \"%2\"").arg(key, value);
}

// Ids inside parameters are written as positions; they become the same items' ids when read back.
QString paramValue(TDataPrj* prj, const QString& code, const QString& key, const QVariant& value) {
    if (code == CTagCmdCode::execute) return QString::number(prj->getPosCfgFromIdCfg(value.toInt()));
    if (code == CTagCmdCode::jamp) return QString::number(prj->getAPosCmdFromIdCmd(value.toInt()));
    if (code == CTagCmdCode::auto_detect && key == CTagCmdProgAutoDetect::route) {
        QStringList pairs;
        for (const auto& pair : TSignature::getAutoRouteTable(value.toString()))
            pairs.append(
                QStringLiteral("%1=%2").arg(pair.first).arg(prj->getPosCfgFromIdCfg(pair.second.toInt())));
        return pairs.join(QLatin1Char('|'));
    }
    return value.toString();
}

QString commandLine(TDataPrj* prj, TDataCmd* cmd) {
    const QString code = cmd->getCmdCode();
    QStringList fields{fieldText(CTagCmd::status, QString::number(cmd->getEnable() ? 1 : 0)),
                       fieldText(CTagCmd::cmd, code)};
    const TData param = cmd->getParam();
    for (auto it = param.constBegin(); it != param.constEnd(); ++it)
        fields.append(fieldText(it.key(), paramValue(prj, code, it.key(), it.value())));
    return QStringLiteral("                {") + fields.join(QStringLiteral(", ")) + QLatin1Char('}');
}

} // namespace

QByteArray TCtrlProject::project_to_data(TDataPrj* prj) {
    TLocker lock(prj->getMutex());
    QByteArray bytes;
    QTextStream out(&bytes, QIODevice::WriteOnly);
    out << "{\n"
        << "    \"version\": 1,\n"
        << "    \"configurations\":\n"
        << "    [\n";
    const QList<TDataCfg*> cfgs = prj->getCfgList();
    for (int i = 0; i < cfgs.size(); ++i) {
        TDataCfg* cfg = cfgs.at(i);
        if (i > 0) out << ",\n";
        out << "        {\n"
            << "            \"name\": \"" << cfg->getName() << "\",\n"
            << "            \"description\": \"" << cfg->getDesc() << "\",\n"
            << "            \"commands\":\n"
            << "            [\n";
        const QList<TDataCmd*> cmds = prj->getCmdListCfg(cfg->getUIN());
        for (int k = 0; k < cmds.size(); ++k) {
            if (k > 0) out << ",\n";
            out << commandLine(prj, cmds.at(k));
        }
        if (!cmds.isEmpty()) out << "\n";
        out << "            ]\n"
            << "        }";
    }
    if (!cfgs.isEmpty()) out << "\n";
    out << "    ]\n"
        << "}\n";
    out.flush();
    return bytes;
}

bool TCtrlProject::save(const QString& fileName, TDataPrj* prj) {
    // The writer prints values verbatim: what it could not read back as itself is refused before the
    // previous file is touched.
    errorText = TPrjText::checkProject(prj);
    if (!errorText.isEmpty()) return false;
    // Written aside and renamed into place, so a failed save never destroys the previous file.
    return TFileSave::write(fileName, project_to_data(prj), errorText);
}
