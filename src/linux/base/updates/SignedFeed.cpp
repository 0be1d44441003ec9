// SPDX-License-Identifier: MIT
#include "linux/base/updates/SignedFeed.h"

#include <algorithm>
#include <array>
#include <memory>
#include <openssl/evp.h>

namespace kivo {
namespace {

constexpr std::string_view head = "kivo-feed-1 ";

// Nothing unless the text is the one canonical form of so many bytes.
template <std::size_t size>
std::optional<std::array<unsigned char, size>> bytes(std::string_view base64) {
    constexpr std::size_t groups = (size + 2) / 3;
    if (base64.size() != 4 * groups)
        return std::nullopt;
    std::array<unsigned char, 3 * groups> decoded{};
    const auto* text = reinterpret_cast<const unsigned char*>(base64.data());
    if (EVP_DecodeBlock(decoded.data(), text, static_cast<int>(base64.size())) != static_cast<int>(3 * groups))
        return std::nullopt;
    std::array<unsigned char, 4 * groups + 1> again{};
    EVP_EncodeBlock(again.data(), decoded.data(), static_cast<int>(size));
    if (std::string_view(reinterpret_cast<const char*>(again.data()), 4 * groups) != base64)
        return std::nullopt;
    std::array<unsigned char, size> result{};
    std::copy_n(decoded.begin(), size, result.begin());
    return result;
}

bool isSignedBy(const std::array<unsigned char, 32>& key, const std::array<unsigned char, 64>& signature,
                std::string_view text) {
    const std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY*)> publicKey(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, key.data(), key.size()), EVP_PKEY_free);
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    return publicKey && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, publicKey.get()) == 1 &&
           EVP_DigestVerify(context.get(), signature.data(), signature.size(),
                            reinterpret_cast<const unsigned char*>(text.data()), text.size()) == 1;
}

} // namespace

SignedFeed SignedFeed::open(std::string_view file, std::string_view key) {
    const auto keyBytes = bytes<32>(key);
    if (!keyBytes)
        return {{}, "the key of this installation is no Ed25519 key"};
    const auto lineEnd = file.find('\n');
    if (!file.starts_with(head) || lineEnd == file.npos)
        return {{}, "it is not signed"};
    const auto signature = bytes<64>(file.substr(head.size(), lineEnd - head.size()));
    if (!signature)
        return {{}, "its signature cannot be read"};
    const auto text = file.substr(lineEnd + 1);
    if (!isSignedBy(*keyBytes, *signature, text))
        return {{}, "its signature is wrong"};
    return {text, {}};
}

} // namespace kivo
