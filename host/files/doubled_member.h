// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_DOUBLED_MEMBER_H
#define HOST_FILES_DOUBLED_MEMBER_H

#include <QByteArrayView>
#include <QString>

#include <optional>

/**
 * The first member that an object in @p json has twice, on any level; escapes in names count as what they stand for.
 * Readers of JSON do not agree which of the two values counts (RFC 8259, section 4), so that one text would say
 * different things to different programs. Nothing where every name is alone. @p json is a JSON text that a parser
 * accepts; of anything else it gives something or nothing, and does no harm.
 */
std::optional<QString> doubled_member(QByteArrayView json);

#endif
