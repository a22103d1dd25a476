# SPDX-License-Identifier: MIT
# Compiles and runs a program with the flags of pkg-config, as makefiles do:
# cmake -DPKG_CONFIG=... -DPC_DIR=... -DCXX=... -DCXX_FLAGS=... -DSOURCE=... -DPROGRAM=... -P use_pkg_config.cmake

set(ENV{PKG_CONFIG_PATH} "${PC_DIR}:$ENV{PKG_CONFIG_PATH}")
execute_process(
    COMMAND "${PKG_CONFIG}" --cflags --libs "kelvora >= 0.1"
    OUTPUT_VARIABLE flags
    COMMAND_ERROR_IS_FATAL ANY)
message("${flags}")

separate_arguments(arguments UNIX_COMMAND "${CXX_FLAGS} -Wall -Wextra -Werror ${SOURCE} -o ${PROGRAM} ${flags}")
execute_process(
    COMMAND "${CXX}" ${arguments}
    COMMAND_ERROR_IS_FATAL ANY)
cmake_path(GET PC_DIR PARENT_PATH library_dir)
set(ENV{LD_LIBRARY_PATH} "${library_dir}")
execute_process(
    COMMAND "${PROGRAM}"
    COMMAND_ERROR_IS_FATAL ANY)
