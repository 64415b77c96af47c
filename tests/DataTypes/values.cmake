# The Base64 tests compare with OpenSSL's block encoder and decoder.
find_package(OpenSSL REQUIRED)
target_link_libraries(test_DataTypes PRIVATE OpenSSL::Crypto)
