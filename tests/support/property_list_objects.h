// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_PROPERTY_LIST_OBJECTS_H
#define TESTS_SUPPORT_PROPERTY_LIST_OBJECTS_H

#include <QByteArray>

#include <vector>

/** Objects of this platform's property lists, as a suite hands them to the library; freed with this object. */
class property_list_objects
{
public:
    property_list_objects() = default;
    ~property_list_objects();
    Q_DISABLE_COPY_MOVE(property_list_objects)

    /** The root of @p list, XML or binary. A list that cannot be parsed ends the test program. */
    void *root(const QByteArray &list);

private:
    std::vector<void *> roots;
};

#endif
