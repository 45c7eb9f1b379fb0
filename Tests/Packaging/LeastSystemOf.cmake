# Part of LeastSystemTest.cmake: what is expected to end the process.
cmake_minimum_required(VERSION 3.25)
include(KeyloftLeastSystem)
keyloft_least_system(least 13.0 "${LIBRARY}")
