# ONNX's protobuf messages, for writing encoder graphs. Found by hand: the package's own CMake files look for parts
# that only some releases have.
find_package(Protobuf REQUIRED)
find_path(QORVANE_ONNX_INCLUDE_DIR onnx/onnx_pb.h REQUIRED)
find_library(QORVANE_ONNX_PROTO_LIBRARY onnx_proto REQUIRED)

add_library(QorvaneOnnxProto INTERFACE)
target_include_directories(QorvaneOnnxProto SYSTEM INTERFACE "${QORVANE_ONNX_INCLUDE_DIR}")
# As Debian builds the library; the header would declare other types without.
target_compile_definitions(QorvaneOnnxProto INTERFACE ONNX_NAMESPACE=onnx ONNX_ML=1)
target_link_libraries(QorvaneOnnxProto INTERFACE "${QORVANE_ONNX_PROTO_LIBRARY}" protobuf::libprotobuf)
