// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include <QApplication>

/** All that the file bluetooth_logs_application gives: what a process needs before it makes the plug-in, a widget. */
extern "C" __attribute__((visibility("default"))) QCoreApplication *bluetooth_logs_application(int &argc, char **argv)
{
    return new QApplication(argc, argv);
}
