#pragma once

// A wire that plays hardware from a script: each step names the bytes the bridge must send and what
// the hardware answers to them. Bytes that differ from the script, or come when it has ended, are
// recorded as the first mismatch; an unanswered receive fails at once instead of waiting.

#include "link/bridge/IBridgeWire.h"

#include <QList>
#include <QPair>

class ScriptWire : public IBridgeWire {
public:
    // Hex texts; an answer of "LOST" ends the line instead of answering.
    void expect(const char* sent, const char* answer) {
        steps.append({QByteArray::fromHex(sent), QByteArray(answer)});
    }
    bool done() const { return steps.isEmpty() && pending.isEmpty() && mismatch.isEmpty(); }
    QString mismatch;
    QByteArray allSent;
    QList<QByteArray> sends; // each send on its own: what went ahead of its answers

    bool send(const QByteArray& bytes) override {
        allSent += bytes;
        sends.append(bytes);
        pending += bytes;
        while (!steps.isEmpty() && pending.size() >= steps.first().first.size()) {
            const QPair<QByteArray, QByteArray> step = steps.takeFirst();
            if (!pending.startsWith(step.first)) {
                mismatch = QStringLiteral("sent %1, script %2")
                               .arg(QString(pending.toHex(' ')), QString(step.first.toHex(' ')));
                return true;
            }
            pending.remove(0, step.first.size());
            if (step.second == "LOST")
                gone = true;
            else
                input += QByteArray::fromHex(step.second);
        }
        if (steps.isEmpty() && !pending.isEmpty() && mismatch.isEmpty())
            mismatch = QStringLiteral("unscripted %1").arg(QString(pending.toHex(' ')));
        return !gone;
    }
    bool receive(QByteArray& got, int count, int) override {
        const int n = qMin(count, input.size());
        got += input.left(n);
        input.remove(0, n);
        return n == count;
    }
    void discardInput() override { input.clear(); }
    bool lost() const override { return gone; }
    void setDtr(bool on) override { dtr.append(on); }
    void pause(int ms) override { paused += ms; }
    QString portName() const override { return QStringLiteral("/dev/ttyTEST"); }
    int answerTimeOut() const override { return 100; }

    QList<bool> dtr;
    int paused = 0;

private:
    QList<QPair<QByteArray, QByteArray>> steps;
    QByteArray pending, input;
    bool gone = false;
};
