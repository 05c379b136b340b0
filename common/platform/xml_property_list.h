// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PLATFORM_XML_PROPERTY_LIST_H
#define COMMON_PLATFORM_XML_PROPERTY_LIST_H

#include <QByteArray>
#include <QVariant>

/**
 * Parses a property list in XML that guarded_property_list() has let through, into the values that
 * property_list_value() gives. For platforms without Foundation: libplist reads numbers by the machine's locale, makes
 * dates of texts that are none and refuses empty keys.
 *
 * An integer beyond 64 bits is the limit that it passes. A number or a date that cannot be read is an invalid value in
 * its place. Of a doubled key the last value counts. Elements that are none of a property list's, or stand where they
 * may not, make the whole list invalid.
 */
QVariant parse_xml_property_list(const QByteArray &guarded);

#endif
