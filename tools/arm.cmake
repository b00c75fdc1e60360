# The device's architecture, with Debian's cross compiler. tools/arm.sh fills the folder of libraries.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(libraries ${CMAKE_CURRENT_LIST_DIR}/../build/arm/sysroot/usr)
set(OPENSSL_INCLUDE_DIR ${libraries}/include CACHE PATH "")
set(OPENSSL_CRYPTO_LIBRARY ${libraries}/lib/arm-linux-gnueabihf/libcrypto.so CACHE FILEPATH "")
# All of it is built by one compiler: notes on how gcc 7 passed records say nothing here.
set(CMAKE_CXX_FLAGS_INIT "-Wno-psabi -isystem ${libraries}/include/arm-linux-gnueabihf")
