// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_SOURCE_ORDINARY_USER_H
#define TESTS_HOST_SOURCE_ORDINARY_USER_H

#include <QtGlobal>

#include <unistd.h>

/** Root may look everywhere: another user looks while an object of this class lives. */
class ordinary_user
{
public:
    ordinary_user()
    {
        if (user == 0 && ::setresuid(65534, 65534, 0) != 0)
            qFatal("cannot become an ordinary user");
    }
    ~ordinary_user()
    {
        if (user == 0 && ::setresuid(0, 0, 0) != 0)
            qFatal("cannot become root again");
    }
    Q_DISABLE_COPY_MOVE(ordinary_user)

private:
    uid_t user = ::geteuid();
};

#endif
