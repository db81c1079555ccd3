# Builds for 64-bit Windows with Debian's MinGW-w64. MESHPAD_QT_WINDOWS (variable or environment) is
# the folder of a Qt for that compiler; the default is the one that scripts/test-windows unpacks.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

if(NOT MESHPAD_QT_WINDOWS)
    set(MESHPAD_QT_WINDOWS "$ENV{MESHPAD_QT_WINDOWS}")
endif()
if(NOT MESHPAD_QT_WINDOWS)
    set(MESHPAD_QT_WINDOWS ${CMAKE_CURRENT_LIST_DIR}/../build/qt6-windows)
endif()
get_filename_component(MESHPAD_QT_WINDOWS "${MESHPAD_QT_WINDOWS}" ABSOLUTE)
set(MESHPAD_QT_WINDOWS "${MESHPAD_QT_WINDOWS}" CACHE PATH "Qt for Windows" FORCE)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MESHPAD_QT_WINDOWS)

set(CMAKE_PREFIX_PATH ${MESHPAD_QT_WINDOWS})
set(CMAKE_FIND_ROOT_PATH ${MESHPAD_QT_WINDOWS} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# moc and rcc run on this machine, so they come from its Qt.
set(QT_HOST_PATH /usr CACHE PATH "Qt of the machine that builds")
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake CACHE PATH "Its CMake packages")
