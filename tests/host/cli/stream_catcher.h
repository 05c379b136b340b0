// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_CLI_STREAM_CATCHER_H
#define TESTS_HOST_CLI_STREAM_CATCHER_H

#include <QTemporaryFile>

#include <cstdio>

#include <unistd.h>

/** What is written to a standard stream while an object of this class lives. */
class stream_catcher
{
public:
    explicit stream_catcher(FILE *standard_stream)
        : stream(standard_stream)
    {
        if (!file.open())
            qFatal("no temporary file");
        std::fflush(stream);
        usual = ::dup(::fileno(stream));
        ::dup2(file.handle(), ::fileno(stream));
    }
    ~stream_catcher()
    {
        give_back();
    }
    Q_DISABLE_COPY_MOVE(stream_catcher)

    QString text()
    {
        give_back();
        file.seek(0);
        return QString::fromUtf8(file.readAll());
    }

private:
    void give_back()
    {
        if (usual == -1)
            return;
        std::fflush(stream);
        ::dup2(usual, ::fileno(stream));
        ::close(usual);
        usual = -1;
    }

    FILE *stream;
    QTemporaryFile file;
    int usual = -1;
};

#endif
