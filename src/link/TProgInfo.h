#pragma once

#include <QString>

// One programmer the user has set up. The flag is not interpreted here; it is kept and written back.
struct TProgInfo {
    bool flag = false;
    QString port;
    QString type;
};
