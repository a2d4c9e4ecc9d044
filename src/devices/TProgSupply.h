#pragma once

#include "app/TTypes.h"

#include <QString>

class TFormCmd;
class TProg;

// A supply the programmer sets (set_vcc, set_vpp, set_vicc, set_vipp): a voltage and, for the commands
// with a current limit, the limit and the over-current protection. Ranges and defaults come from the
// programmer's description; without a programmer the defaults are 0 and no value is valid.
class TProgSupply {
public:
    static const TProgSupply vcc, vpp, vicc, vipp;

    void defaults(TProg* prog, TData& p) const;
    // Each value by its tenths rounded to nearest (halves away from zero) within the programmer's range.
    bool check(TProg* prog, const TData& p) const;
    // "3.3 V", or "3.3 V, 0.500 mA, OCP" with a current limit.
    QString view(const TData& p) const;
    TFormCmd* form(TProg* prog, const TData& p) const;

private:
    // One value: its parameter key, its caption's text and where the description keeps its range and
    // default.
    struct Quantity {
        const char* key;
        int caption;
        void (TProg::*range)(double& min, double& max) const;
        double (TProg::*def)() const;
    };

    explicit TProgSupply(const Quantity& volt);
    TProgSupply(const Quantity& volt, const Quantity& current);

    static void rangeOf(TProg* prog, const Quantity& q, double& min, double& max);
    static double defaultOf(TProg* prog, const Quantity& q);
    static bool inRange(TProg* prog, const Quantity& q, const TData& p);

    const Quantity volt;
    const Quantity current; // the voltage again when not limited
    const bool limited;     // with a current limit and its protection
};
