// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_TEXT_JSON_TEXT_H
#define HOST_TEXT_JSON_TEXT_H

#include "host/text/cell.h"

#include <QByteArray>

// JSON that is written row by row, where a document in memory would be too large.

/**
 * Appends a JSON string. @p utf8 is valid UTF-8. Control characters, line separators and characters that turn the
 * direction of writing are written as \u escapes: they mean the same to a program, and do nothing to a terminal, an
 * editor or a splitter of lines.
 */
void append_json_text(QByteArray &json, QByteArrayView utf8);

/** Appends a string, or {"base64": "…"} for bytes that are no UTF-8. */
void append_json_bytes(QByteArray &json, QByteArrayView bytes);

/** Appends a JSON text that Qt made, with the same characters written as \u escapes in its strings. */
void append_escaped_json(QByteArray &json, QByteArrayView made_by_qt);

/**
 * Appends a value of a row: null, an exact integer, a real (always with a point or an exponent; {"real": "inf"} for
 * what JSON has no number for), a text as append_json_bytes() does, a blob as {"base64": "…"}.
 */
void append_json_value(QByteArray &json, const cell &value);

#endif
