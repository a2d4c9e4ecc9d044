#include "misc/TFormDesc.h"

#include "app/TLang.h"

namespace {
// The caption is the last field and keeps any "|" it contains.
QStringList splitFields(const QString& line, int count) {
    QStringList fields;
    int from = 0;
    while (fields.size() < count - 1) {
        const int bar = line.indexOf(QLatin1Char('|'), from);
        if (bar < 0) break;
        fields.append(line.mid(from, bar - from));
        from = bar + 1;
    }
    fields.append(line.mid(from));
    return fields;
}

int fieldCount(const QString& kind) {
    if (kind == QLatin1String("cap")) return 2;
    if (kind == QLatin1String("itm")) return 3;
    if (kind == QLatin1String("brk")) return 4;
    if (kind == QLatin1String("edr")) return 5;
    if (kind == QLatin1String("ckl") || kind == QLatin1String("cho")) return 6;
    return 0;
}

unsigned char byteAt(const QByteArray& bytes, int i) {
    return i < bytes.size() ? static_cast<unsigned char>(bytes.at(i)) : 0;
}

bool singleBit(unsigned char m) {
    return m != 0 && (m & (m - 1)) == 0;
}
} // namespace

bool TFormDesc::fail(int id, int number, const QString& arg) {
    errorText = Lang.get(id).arg(number);
    if (!arg.isNull()) errorText = errorText.arg(arg);
    return false;
}

bool TFormDesc::parse(const QStringList& lines) {
    items.clear();
    errorText.clear();
    for (int i = 0; i < lines.size(); ++i)
        if (!parseLine(lines.at(i), i + 1)) return false;
    if (!items.isEmpty() && items.last().kind == Kind::Choice && items.last().options.isEmpty())
        return fail(459, lines.size(), items.last().caption);
    return true;
}

bool TFormDesc::parseMask(const QString& text, int bytes, QByteArray& mask, int number) {
    mask = QByteArray::fromHex(text.toLatin1());
    const bool hex =
        !text.isEmpty() && text.size() % 2 == 0 && text.contains(QRegExp(QStringLiteral("^[0-9A-Fa-f]+$")));
    if (!hex || (bytes > 0 && mask.size() != bytes)) return fail(452, number, text);
    return true;
}

bool TFormDesc::parseByte(const QString& text, Item& item, int number) {
    bool ok = true;
    item.byte = text == QLatin1String("-") ? 0 : text.toInt(&ok);
    if (item.byte == -1 && item.kind == Kind::Edit) item.byte = 0;
    if (!ok || item.byte < 0 || item.byte > 255) return fail(453, number, text);
    return true;
}

bool TFormDesc::parseAccess(const QString& text, Item& item, int number) {
    if (text == QLatin1String("ro"))
        item.readOnly = true;
    else if (text != QLatin1String("e") && text != QLatin1String("rw"))
        return fail(455, number, text);
    return true;
}

bool TFormDesc::parseLine(const QString& line, int number) {
    const QString kind = line.section(QLatin1Char('|'), 0, 0);
    const int count = fieldCount(kind);
    if (count == 0) return fail(450, number, kind);
    const QStringList f = splitFields(line, count);
    if (f.size() != count) return fail(451, number, QString::number(count));
    if (!items.isEmpty() && items.last().kind == Kind::Choice && items.last().options.isEmpty() &&
        kind != QLatin1String("itm"))
        return fail(459, number, items.last().caption);
    Item item;
    item.caption = f.last();
    if (kind == QLatin1String("itm")) {
        if (items.isEmpty() || items.last().kind != Kind::Choice) return fail(454, number);
        QByteArray value;
        if (!parseMask(f.at(1), 1, value, number)) return false;
        const unsigned char v = byteAt(value, 0), m = byteAt(items.last().mask, 0);
        if (v & ~m) return fail(457, number, f.at(1));
        items.last().options.append(qMakePair(v, item.caption));
        return true;
    }
    if (kind == QLatin1String("brk")) {
        if (items.isEmpty() || (items.last().kind != Kind::Check && items.last().kind != Kind::Choice))
            return fail(454, number);
        QByteArray value;
        if (!parseMask(f.at(1), 1, value, number)) return false;
        if (byteAt(value, 0) & ~byteAt(items.last().mask, 0)) return fail(457, number, f.at(1));
        items.last().lockOuts.append({byteAt(value, 0), f.at(2), item.caption});
        return true;
    }
    if (kind == QLatin1String("edr")) {
        item.kind = Kind::Edit;
        if (!parseMask(f.at(1), 0, item.mask, number) || !parseAccess(f.at(2), item, number) ||
            !parseByte(f.at(3), item, number))
            return false;
    } else if (kind != QLatin1String("cap")) {
        item.kind = kind == QLatin1String("ckl") ? Kind::Check : Kind::Choice;
        if (!parseMask(f.at(1), 1, item.mask, number)) return false;
        if (f.at(2) != QLatin1String("-") && f.at(2) != QLatin1String("i")) return fail(456, number, f.at(2));
        item.inverted = f.at(2) == QLatin1String("i");
        if (!parseAccess(f.at(3), item, number) || !parseByte(f.at(4), item, number)) return false;
        if (item.kind == Kind::Check && !singleBit(byteAt(item.mask, 0))) return fail(458, number, f.at(1));
    }
    items.append(item);
    return true;
}

int TFormDesc::getByteCount() const {
    int count = 0;
    for (const Item& item : items)
        if (item.kind != Kind::Caption) count = qMax(count, item.byte + item.mask.size());
    return count;
}

QVector<QVariant> TFormDesc::toFields(const QByteArray& bytes) const {
    QVector<QVariant> fields;
    for (const Item& item : items) {
        const unsigned char bits = byteAt(bytes, item.byte) & byteAt(item.mask, 0);
        switch (item.kind) {
        case Kind::Caption:
            fields.append(QVariant());
            break;
        case Kind::Check:
            fields.append((bits != 0) != item.inverted);
            break;
        case Kind::Choice: {
            int index = -1;
            for (int i = 0; i < item.options.size() && index < 0; ++i)
                if (item.options.at(i).first == bits) index = i;
            fields.append(index);
            break;
        }
        case Kind::Edit: {
            QByteArray value(item.mask.size(), '\0');
            for (int i = 0; i < item.mask.size(); ++i)
                value[i] = static_cast<char>(byteAt(bytes, item.byte + i) & byteAt(item.mask, i));
            fields.append(QString::fromLatin1(value.toHex().toUpper()));
            break;
        }
        }
    }
    return fields;
}

QVector<TFormDesc::LockOutHit> TFormDesc::lockOuts(const QByteArray& bytes) const {
    QVector<LockOutHit> hits;
    for (int n = 0; n < items.size(); ++n) {
        const Item& item = items.at(n);
        const unsigned char bits = byteAt(bytes, item.byte) & byteAt(item.mask, 0);
        for (const Item::LockOut& l : item.lockOuts) {
            if (l.value != bits) continue;
            QString meaning;
            for (const auto& option : item.options)
                if (option.first == bits) meaning = option.second;
            hits.append({n, l, meaning});
        }
    }
    return hits;
}

QByteArray TFormDesc::toBytes(const QVector<QVariant>& fields, const QByteArray& base) const {
    QByteArray bytes = base;
    if (bytes.size() < getByteCount()) bytes.append(QByteArray(getByteCount() - bytes.size(), '\0'));
    auto put = [&](int at, unsigned char mask, unsigned char value) {
        bytes[at] = static_cast<char>((byteAt(bytes, at) & ~mask) | (value & mask));
    };
    for (int n = 0; n < items.size() && n < fields.size(); ++n) {
        const Item& item = items.at(n);
        const unsigned char mask = byteAt(item.mask, 0);
        if (item.readOnly || item.kind == Kind::Caption) continue;
        if (item.kind == Kind::Check) {
            put(item.byte, mask, fields.at(n).toBool() != item.inverted ? mask : 0);
        } else if (item.kind == Kind::Choice) {
            const int index = fields.at(n).toInt();
            if (index >= 0 && index < item.options.size()) put(item.byte, mask, item.options.at(index).first);
        } else {
            const QByteArray value = QByteArray::fromHex(fields.at(n).toString().toLatin1());
            for (int i = 0; i < item.mask.size() && i < value.size(); ++i)
                put(item.byte + i, byteAt(item.mask, i), byteAt(value, i));
        }
    }
    return bytes;
}
