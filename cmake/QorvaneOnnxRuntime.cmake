# The inference runtime's headers. The library itself is opened at run time (semantic/OnnxRuntime), so that one
# binary works with every release that has the calls we use, and starts without any.
set(QORVANE_ORT_ROOT "${PROJECT_SOURCE_DIR}/build/deps/onnxruntime" CACHE PATH
    "Where scripts/fetch-onnxruntime.sh put the inference runtime (lib/ and include/)")

find_path(QORVANE_ORT_INCLUDE_DIR onnxruntime_cxx_api.h
    HINTS "${QORVANE_ORT_ROOT}/include"
    PATH_SUFFIXES onnxruntime)
if(NOT QORVANE_ORT_INCLUDE_DIR)
    message(FATAL_ERROR "The inference runtime's headers are missing. Run scripts/fetch-onnxruntime.sh first.")
endif()

add_library(QorvaneOnnxRuntimeHeaders INTERFACE)
target_include_directories(QorvaneOnnxRuntimeHeaders SYSTEM INTERFACE "${QORVANE_ORT_INCLUDE_DIR}")
# Keeps the headers from looking for a linked library before the opened one has been handed to them.
target_compile_definitions(QorvaneOnnxRuntimeHeaders INTERFACE ORT_API_MANUAL_INIT)
target_link_libraries(QorvaneOnnxRuntimeHeaders INTERFACE ${CMAKE_DL_LIBS})

# Installed where an installed program looks first. Without it the system's own library serves.
install(FILES "${QORVANE_ORT_ROOT}/lib/libonnxruntime.so.1" DESTINATION lib/qorvane OPTIONAL)
