// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_ORDINARY_USER_H
#define TESTS_SUPPORT_ORDINARY_USER_H

#include <QtGlobal>

#include <QtGlobal>

#include <unistd.h>

/** Root may look everywhere: another user looks while an object of this class lives. */
class ordinary_user
{
public:
    ordinary_user()
    {
        if (user == 0 && (::setreuid(other, 0) != 0 || ::seteuid(other) != 0))
            qFatal("cannot become an ordinary user");
    }
    ~ordinary_user()
    {
        if (user == 0 && (::seteuid(0) != 0 || ::setreuid(0, 0) != 0))
            qFatal("cannot become root again");
    }
    Q_DISABLE_COPY_MOVE(ordinary_user)

private:
    static constexpr uid_t other = 65534; // really, too: access() asks for the real user
    uid_t user = ::geteuid();
};

#endif
