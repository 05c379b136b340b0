// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_TERMINAL_TEXT_H
#define HOST_CLI_TERMINAL_TEXT_H

#include <QString>

/**
 * Evidence is written by the other side and must not steer the examiner's terminal: this gives @p text with everything
 * that would act on it, or stay unseen, as a visible escape, the code point in hexadecimal: \u{1b}. That is every
 * control, format (bidi too), unassigned and ignorable character, every blank but U+0020, marks without a base and
 * marks piled up on one base. A backslash is doubled, so that no escape can be forged. Joiners and selectors stay where
 * they hold an emoji together.
 */
QString terminal_text(const QString &text);

/** The escape of terminal_text() for one character. */
QString terminal_escape(char32_t character);

/** How many columns of a terminal @p text takes, which terminal_text() gave. */
qsizetype terminal_width(const QString &text);

#endif
