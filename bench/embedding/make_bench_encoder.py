#!/usr/bin/python3
"""Makes a vision encoder with the work of a real one, to measure what the application adds to it.

    make_bench_encoder.py DESTINATION.onnx

The layout and sizes are those of ViT-B/32 (Dosovitskiy et al., 2021): 49 patches of 32 by 32 pixels and a class token,
768 wide, 12 layers. The weights are random and the layers share them, which keeps the file small and the arithmetic the
same.
"""

import pathlib
import sys

import numpy as np
import onnx
from onnx import TensorProto, helper, numpy_helper

WIDTH, HEADS, LAYERS, PATCH, OUTPUT = 768, 12, 12, 32, 512
TOKENS = (224 // PATCH) ** 2 + 1


def main():
    random = np.random.default_rng(1)
    constants, nodes = [], []

    def weight(name, *shape):
        values = random.standard_normal(shape) / np.sqrt(shape[0])
        constants.append(numpy_helper.from_array(values.astype(np.float32), name))
        return name

    def constant(name, values):
        constants.append(numpy_helper.from_array(np.asarray(values), name))
        return name

    def add(operator, inputs, output, **attributes):
        nodes.append(helper.make_node(operator, inputs, [output], **attributes))
        return output

    weight("patches", WIDTH, 3, PATCH, PATCH)
    weight("class_token", 1, 1, WIDTH)
    for name, rows, columns in (("query", WIDTH, WIDTH), ("key", WIDTH, WIDTH), ("value", WIDTH, WIDTH),
                                ("attended", WIDTH, WIDTH), ("wide", WIDTH, 4 * WIDTH),
                                ("narrow", 4 * WIDTH, WIDTH), ("projection", WIDTH, OUTPUT)):
        weight(name, rows, columns)
    constant("ones", np.ones(WIDTH, np.float32))
    constant("zeros", np.zeros(WIDTH, np.float32))
    constant("flat", np.array([1, WIDTH, TOKENS - 1], np.int64))
    constant("heads", np.array([1, TOKENS, HEADS, WIDTH // HEADS], np.int64))
    constant("joined", np.array([1, TOKENS, WIDTH], np.int64))
    constant("scale", np.array((WIDTH // HEADS) ** -0.5, np.float32))
    constant("steepness", np.array(1.702, np.float32))
    constant("first", np.array(0, np.int64))

    add("Conv", ["pixel_values", "patches"], "embedded", strides=[PATCH, PATCH])
    add("Reshape", ["embedded", "flat"], "rows")
    add("Transpose", ["rows"], "patch_tokens", perm=[0, 2, 1])
    x = add("Concat", ["class_token", "patch_tokens"], "tokens", axis=1)
    for layer in range(LAYERS):
        def named(name):
            return f"{name}_{layer}"

        normal = add("LayerNormalization", [x, "ones", "zeros"], named("normal"))

        def split(name, order):
            add("MatMul", [normal, name], named(name))
            add("Reshape", [named(name), "heads"], named(name + "_heads"))
            return add("Transpose", [named(name + "_heads")], named(name + "_turned"), perm=order)

        query, key, value = split("query", [0, 2, 1, 3]), split("key", [0, 2, 3, 1]), split("value", [0, 2, 1, 3])
        add("MatMul", [query, key], named("scores"))
        add("Mul", [named("scores"), "scale"], named("scaled"))
        add("Softmax", [named("scaled")], named("attention"), axis=-1)
        add("MatMul", [named("attention"), value], named("mixed"))
        add("Transpose", [named("mixed")], named("mixed_turned"), perm=[0, 2, 1, 3])
        add("Reshape", [named("mixed_turned"), "joined"], named("mixed_joined"))
        add("MatMul", [named("mixed_joined"), "attended"], named("out"))
        x = add("Add", [x, named("out")], named("after_attention"))

        add("LayerNormalization", [x, "ones", "zeros"], named("second_normal"))
        add("MatMul", [named("second_normal"), "wide"], named("wide_out"))
        add("Mul", [named("wide_out"), "steepness"], named("steep"))
        add("Sigmoid", [named("steep")], named("gate"))
        add("Mul", [named("wide_out"), named("gate")], named("activated"))
        add("MatMul", [named("activated"), "narrow"], named("narrow_out"))
        x = add("Add", [x, named("narrow_out")], named("after_layer"))
    add("Gather", [x, "first"], "class_out", axis=1)
    add("MatMul", ["class_out", "projection"], "image_features")

    graph = helper.make_graph(
        nodes, "bench", [helper.make_tensor_value_info("pixel_values", TensorProto.FLOAT, [1, 3, 224, 224])],
        [helper.make_tensor_value_info("image_features", TensorProto.FLOAT, [1, OUTPUT])], constants)
    model = helper.make_model(graph, opset_imports=[helper.make_opsetid("", 17)], producer_name="qorvane-bench")
    model.ir_version = 8
    onnx.checker.check_model(model)
    pathlib.Path(sys.argv[1]).write_bytes(model.SerializeToString())


if __name__ == "__main__":
    main()
