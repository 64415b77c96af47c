#include <openssl/evp.h>

#include <string>
#include <vector>

std::string ReferenceBase64Encode(const std::vector<unsigned char>& in) {
    std::string out(4 * ((in.size() + 2) / 3) + 1, '\0');
    int n = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(&out[0]), in.data(),
                            static_cast<int>(in.size()));
    out.resize(static_cast<size_t>(n));
    return out;
}
