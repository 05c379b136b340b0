// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/exit_code.h"

exit_code exit_code_of(error_kind kind)
{
    switch (kind) {
    case error_kind::io:
        break;
    case error_kind::refused:
        return exit_code::usage;
    case error_kind::not_found:
        return exit_code::input;
    case error_kind::incomplete:
        return exit_code::partial;
    case error_kind::evidence_changed:
        return exit_code::evidence_changed;
    case error_kind::interrupted:
        return exit_code::interrupted;
    }
    return exit_code::internal_error;
}

exit_code exit_code_of(outcome_code code)
{
    return exit_code(int(code));
}
