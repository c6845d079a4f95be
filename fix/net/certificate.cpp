#include "fix/net/certificate.h"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <array>
#include <memory>

#include "core/file_writer.h"
#include "fix/net/fingerprint.h"

namespace tutti {
namespace {

constexpr long valid_seconds = 20L * 365 * 24 * 3'600;

template <auto free>
struct Free {
  template <class Type>
  void operator()(Type* one) const {
    free(one);
  }
};
using Key = std::unique_ptr<EVP_PKEY, Free<EVP_PKEY_free>>;
using Paper = std::unique_ptr<X509, Free<X509_free>>;
using Memory = std::unique_ptr<BIO, Free<BIO_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Free<X509_EXTENSION_free>>;

std::string text_of(BIO* memory) {
  char* bytes = nullptr;
  const long size = BIO_get_mem_data(memory, &bytes);
  return size > 0 ? std::string{bytes, static_cast<std::size_t>(size)} : std::string{};
}

// A certificate of its own that says who runs here, and nothing else. Empty texts where the library fails.
Certificate make_certificate() {
  const Key key{EVP_EC_gen("P-256")};
  const Paper paper{X509_new()};
  if (!key || !paper) return {};
  std::array<unsigned char, 8> serial{};
  if (RAND_bytes(serial.data(), static_cast<int>(serial.size())) != 1) return {};
  serial[0] &= 0x7F;
  BIGNUM* number = BN_bin2bn(serial.data(), static_cast<int>(serial.size()), nullptr);
  BN_to_ASN1_INTEGER(number, X509_get_serialNumber(paper.get()));
  BN_free(number);
  X509_set_version(paper.get(), X509_VERSION_3);
  X509_gmtime_adj(X509_getm_notBefore(paper.get()), -24L * 3'600);
  X509_gmtime_adj(X509_getm_notAfter(paper.get()), valid_seconds);
  X509_set_pubkey(paper.get(), key.get());
  X509_NAME* name = X509_get_subject_name(paper.get());
  constexpr unsigned char holder[] = "tutti-dealer";
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, holder, -1, -1, 0);
  X509_set_issuer_name(paper.get(), name);
  const Extension names{
      X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1,IP:::1")};
  if (names) X509_add_ext(paper.get(), names.get(), -1);
  if (X509_sign(paper.get(), key.get(), EVP_sha256()) == 0) return {};
  const Memory pem{BIO_new(BIO_s_mem())}, key_pem{BIO_new(BIO_s_mem())};
  if (PEM_write_bio_X509(pem.get(), paper.get()) != 1 ||
      PEM_write_bio_PrivateKey(key_pem.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) != 1)
    return {};
  return {text_of(pem.get()), text_of(key_pem.get()), {}};
}

std::string fingerprint_of_pem(const std::string& pem) {
  const Memory memory{BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size()))};
  const Paper paper{PEM_read_bio_X509(memory.get(), nullptr, nullptr, nullptr)};
  return paper ? fingerprint_of(paper.get()) : std::string{};
}

}  // namespace

std::string fingerprint_of(const X509* certificate) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  if (X509_digest(certificate, EVP_sha256(), digest.data(), &size) != 1) return {};
  std::string text;
  for (unsigned i = 0; i < size; ++i) {
    constexpr char digits[] = "0123456789abcdef";
    text += digits[digest[i] >> 4];
    text += digits[digest[i] & 15];
  }
  return text;
}

tl::expected<Certificate, FileError> own_certificate(const std::filesystem::path& certificate_file,
                                                     const std::filesystem::path& key_file) {
  const auto has_certificate = file_exists(certificate_file), has_key = file_exists(key_file);
  if (!has_certificate) return tl::unexpected(has_certificate.error());
  if (!has_key) return tl::unexpected(has_key.error());
  if (*has_certificate != *has_key)
    return tl::unexpected(FileError{*has_key ? certificate_file : key_file,
                                    "is missing, while " +
                                        (*has_key ? key_file : certificate_file).filename().string() +
                                        " is there: put both there, or take both away"});
  if (!*has_certificate) {
    const Certificate made = make_certificate();
    if (made.pem.empty()) return tl::unexpected(FileError{certificate_file, "no certificate could be made"});
    // The key first: a certificate without its key would not be used.
    if (auto written = replace_file(key_file, made.key_pem); !written) return tl::unexpected(written.error());
    if (auto written = replace_file(certificate_file, made.pem); !written)
      return tl::unexpected(written.error());
  }
  auto pem = read_file(certificate_file);
  if (!pem) return tl::unexpected(pem.error());
  auto key_pem = read_file(key_file);
  if (!key_pem) return tl::unexpected(key_pem.error());
  Certificate out{std::move(*pem), std::move(*key_pem), {}};
  out.fingerprint = fingerprint_of_pem(out.pem);
  if (out.fingerprint.empty()) return tl::unexpected(FileError{certificate_file, "holds no certificate"});
  return out;
}

}  // namespace tutti
