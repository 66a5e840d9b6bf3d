# Configures the macOS build on another system against Apple's published
# headers (LOADWARDEN_APPLE_HEADERS), for type-checking only: nothing can be
# linked, so compiler checks stop at object files.
# LOADWARDEN_APPLE_ARCH is arm64 or x86_64.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 21) # macOS 12
set(CMAKE_SYSTEM_PROCESSOR ${LOADWARDEN_APPLE_ARCH})
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES LOADWARDEN_APPLE_HEADERS LOADWARDEN_APPLE_ARCH)
# Nothing is linked or installed, so no Mach-O tool is ever run.
find_program(CMAKE_INSTALL_NAME_TOOL true REQUIRED)

find_program(apple_clang NAMES clang++-16 REQUIRED)
set(CMAKE_CXX_COMPILER ${apple_clang})
set(CMAKE_OBJCXX_COMPILER ${apple_clang})
set(CMAKE_CXX_COMPILER_TARGET ${LOADWARDEN_APPLE_ARCH}-apple-macos12)
set(CMAKE_OBJCXX_COMPILER_TARGET ${LOADWARDEN_APPLE_ARCH}-apple-macos12)

if(LOADWARDEN_APPLE_ARCH STREQUAL "arm64")
  set(libc_arch aarch64)
else()
  set(libc_arch x86_64)
endif()
set(libcxx /usr/lib/llvm-16/include/c++/v1)
set(clang_headers /usr/lib/llvm-16/lib/clang/16/include)
set(H ${LOADWARDEN_APPLE_HEADERS})
string(JOIN " " apple_flags
  -nostdinc -nostdinc++ -isystem ${libcxx} -isystem ${clang_headers}
  -I${H}/availability
  -isystem ${H}/libc/${libc_arch}-macos.12-none
  -isystem ${H}/libc/any-macos.12-any
  -isystem ${H}/libc/any-macos-any
  -iframework ${H}/Frameworks)
set(CMAKE_CXX_FLAGS_INIT "${apple_flags}")
set(CMAKE_OBJCXX_FLAGS_INIT "${apple_flags}")

# The host's nlohmann_json and Qt headers serve the Apple build too, but not
# their prefix /usr/include, whose C library is Linux's: the JSON package is
# staged under a prefix of its own that holds only its headers.
set(json_stage ${CMAKE_BINARY_DIR}/host-json)
find_path(host_json_config nlohmann_jsonConfig.cmake
          PATHS /usr/share/cmake/nlohmann_json /usr/lib/cmake/nlohmann_json NO_DEFAULT_PATH
          REQUIRED)
file(COPY ${host_json_config}/ DESTINATION ${json_stage}/share/cmake/nlohmann_json)
file(MAKE_DIRECTORY ${json_stage}/include)
file(CREATE_LINK ${host_json_config}/../../../include/nlohmann ${json_stage}/include/nlohmann
     SYMBOLIC)
set(nlohmann_json_DIR ${json_stage}/share/cmake/nlohmann_json CACHE PATH "")
# Qt's tools (moc) are the host's own.
find_path(Qt6_DIR Qt6Config.cmake PATH_SUFFIXES cmake/Qt6
          PATHS /usr/lib/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu /usr/lib NO_DEFAULT_PATH)
cmake_path(GET Qt6_DIR PARENT_PATH QT_HOST_PATH_CMAKE_DIR)
set(QT_HOST_PATH /usr)
# Qt's Gui asks for the OpenGL framework, which only a Mac has and which would
# only be linked, and for Vulkan's headers, which would bring /usr/include.
foreach(qt_gui_dependency WrapOpenGL WrapVulkanHeaders)
  if(NOT TARGET ${qt_gui_dependency}::${qt_gui_dependency})
    add_library(${qt_gui_dependency}::${qt_gui_dependency} INTERFACE IMPORTED GLOBAL)
  endif()
endforeach()
