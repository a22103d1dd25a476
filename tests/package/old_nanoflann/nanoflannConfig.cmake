# SPDX-License-Identifier: MIT
add_library(nanoflann::nanoflann INTERFACE IMPORTED)
