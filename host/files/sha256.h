// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_SHA256_H
#define HOST_FILES_SHA256_H

#include <QByteArray>
#include <QString>

#include <memory>

struct evp_md_ctx_st;

/** SHA-256 (FIPS 180-4) of a stream of bytes, by libcrypto, which uses what the processor has for it. */
class sha256
{
public:
    sha256();
    ~sha256();

    void add(QByteArrayView bytes);

    /** 64 hexadecimal digits, lower case. Ends the stream. */
    QString result();

    static QString of(QByteArrayView bytes);

private:
    std::unique_ptr<evp_md_ctx_st, void (*)(evp_md_ctx_st *)> context;
};

#endif
