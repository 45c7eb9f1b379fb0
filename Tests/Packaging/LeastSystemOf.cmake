# LeastSystemTest.cmake runs this script in a separate process, because it expects the call to fail.
cmake_minimum_required(VERSION 3.25)
include(KeyloftLeastSystem)
keyloft_least_system(least 13.0 "${LIBRARY}")
