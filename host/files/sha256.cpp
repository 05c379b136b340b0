// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/sha256.h"

#include <openssl/evp.h>

#include <new>

sha256::sha256()
    : context(EVP_MD_CTX_new(), EVP_MD_CTX_free)
{
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1)
        throw std::bad_alloc();
}

sha256::~sha256() = default;

void sha256::add(QByteArrayView bytes)
{
    EVP_DigestUpdate(context.get(), bytes.data(), size_t(bytes.size()));
}

QString sha256::result()
{
    QByteArray digest(EVP_MAX_MD_SIZE, '\0');
    unsigned int size = 0;
    EVP_DigestFinal_ex(context.get(), reinterpret_cast<unsigned char *>(digest.data()), &size);
    return QString::fromLatin1(digest.first(qsizetype(size)).toHex());
}

QString sha256::of(QByteArrayView bytes)
{
    sha256 hash;
    hash.add(bytes);
    return hash.result();
}
