#!/usr/bin/python3
"""Makes the small encoders that the tests search with.

    make_test_encoders.py DESTINATION

Both families come out with the file names, tensors and vocabularies that the application asks for, and they really
work, on a tiny scale: the vision encoder measures colours and brightness of the picture it is given, the text encoder
turns colour words into the same measures, so "red" finds red pictures. The application treats them as any other
encoder. Beside them lie damaged variants, each wrong in one way.

    DESTINATION/chinese, DESTINATION/openai   one family each: two encoders and the vocabulary
    DESTINATION/variants                      the variants

Everything is computed from the tables below: two runs give the same bytes.
"""

import json
import pathlib
import sys

import numpy as np
import onnx
from onnx import TensorProto, helper, numpy_helper

SIDE = 224
CONTEXT = 77
# What the newest runtime and Debian's oldest onnx package agree on.
OPSET = 17
IR_VERSION = 8

# The application normalises colours with these (the CLIP means and deviations); the encoder undoes it.
MEAN = [0.48145467, 0.4578275, 0.40821072]
DEVIATION = [0.26862955, 0.2613026, 0.2757771]

# The measures, in the order of the vector's elements.
AXES = ["red", "green", "blue", "yellow", "bright", "dark", "top-bright", "centre-bright", "picture"]
# The families' vectors differ in length, as real ones may, so that mixing them shows. The rest is zero.
LENGTHS = {"chinese": 12, "openai": 16}
# A little of every picture is just "picture", so that none is the zero vector.
PICTURE_SHARE = 0.05

ENGLISH = {
    "red": {"red": 1},
    "green": {"green": 1},
    "blue": {"blue": 1},
    "yellow": {"yellow": 1},
    "bright": {"bright": 1},
    "dark": {"dark": 1},
    "white": {"bright": 1},
    "black": {"dark": 1},
    "sky": {"blue": 0.8, "bright": 0.6},
    "grass": {"green": 0.9, "dark": 0.2},
}
CHINESE = {
    "红": "red", "红色": "red", "绿": "green", "绿色": "green", "蓝": "blue", "蓝色": "blue",
    "黄": "yellow", "黄色": "yellow", "亮": "bright", "明亮": "bright", "暗": "dark", "黑暗": "dark",
    "白色": "white", "黑色": "black", "天空": "sky", "草地": "grass",
    # The Chinese mode takes Latin runs in pieces of at most four letters.
    "red": "red", "blue": "blue", "dark": "dark", "sky": "sky",
}
CHINESE_SPECIAL = {"[PAD]": 0, "[UNK]": 100, "[CLS]": 101, "[SEP]": 102, "[MASK]": 103}
FIRST_CHINESE_ID = 110
FIRST_ENGLISH_ID = 320


def constant(name, values, dtype=np.float32):
    return numpy_helper.from_array(np.asarray(values, dtype=dtype), name)


def save(path, nodes, inputs, outputs, constants):
    graph = helper.make_graph(nodes, path.stem, inputs, outputs, constants)
    model = helper.make_model(graph, opset_imports=[helper.make_opsetid("", OPSET)], producer_name="qorvane-tests")
    model.ir_version = IR_VERSION
    onnx.checker.check_model(model)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(model.SerializeToString())


def tail(nodes, constants, feature, length, output, element_type, broken=None):
    """From the 1 x axes tensor `feature` to the output tensor, damaged as `broken` says."""
    constants.append(constant("padding", [0, 0, 0, length - len(AXES)], np.int64))
    nodes.append(helper.make_node("Pad", [feature, "padding"], ["padded"]))
    last = "padded"
    if broken is not None:
        constants.append(constant("broken_factor", broken["factor"]))
        constants.append(constant("broken_offset", broken["offset"]))
        nodes.append(helper.make_node("Mul", [last, "broken_factor"], ["scaled"]))
        nodes.append(helper.make_node("Add", ["scaled", "broken_offset"], ["damaged"]))
        last = "damaged"
    nodes.append(helper.make_node("Cast", [last], [output], to=element_type))
    return [helper.make_tensor_value_info(output, element_type, [1, length])]


def make_vision(path, length, output="image_features", element_type=TensorProto.FLOAT, broken=None):
    nodes = []
    constants = [
        constant("deviation", np.reshape(DEVIATION, (1, 3, 1, 1))),
        constant("mean", np.reshape(MEAN, (1, 3, 1, 1))),
        constant("half", [0.5]),
        constant("two", [2.0]),
        constant("picture", [[PICTURE_SHARE]]),
        constant("rows", [2], np.int64),
        constant("area", [2, 3], np.int64),
        constant("half_side", [SIDE // 2], np.int64),
        constant("side", [SIDE], np.int64),
        constant("quarter", [SIDE // 4, SIDE // 4], np.int64),
        constant("three_quarters", [3 * SIDE // 4, 3 * SIDE // 4], np.int64),
    ]

    def add(operator, inputs, name, **attributes):
        nodes.append(helper.make_node(operator, inputs, [name], **attributes))
        return name

    add("Mul", ["pixel_values", "deviation"], "unscaled")
    add("Add", ["unscaled", "mean"], "colours")
    add("ReduceMean", ["colours"], "means", axes=[2, 3], keepdims=0)
    add("Split", ["means"], "red_mean", axis=1)
    nodes[-1].output.extend(["green_mean", "blue_mean"])

    def surplus(name, first, second, third):
        """By how much `first` stands above both others."""
        add("Max", [second, third], name + "_others")
        add("Sub", [first, name + "_others"], name + "_difference")
        return add("Relu", [name + "_difference"], name)

    surplus("red", "red_mean", "green_mean", "blue_mean")
    surplus("green", "green_mean", "red_mean", "blue_mean")
    surplus("blue", "blue_mean", "red_mean", "green_mean")
    add("Min", ["red_mean", "green_mean"], "yellow_mean")
    add("Sub", ["yellow_mean", "blue_mean"], "yellow_difference")
    add("Relu", ["yellow_difference"], "yellow")

    add("ReduceMean", ["means"], "brightness", axes=[1], keepdims=1)
    add("Sub", ["brightness", "half"], "above_half")
    add("Relu", ["above_half"], "bright")
    add("Neg", ["above_half"], "below_half")
    add("Relu", ["below_half"], "dark")

    def mean_of_part(name, start, end, axes):
        add("Slice", ["colours", start, end, axes], name + "_part")
        add("ReduceMean", [name + "_part"], name + "_channels", axes=[2, 3], keepdims=0)
        add("ReduceMean", [name + "_channels"], name + "_mean", axes=[1], keepdims=1)
        add("Sub", [name + "_mean", "brightness"], name + "_difference")
        return add("Relu", [name + "_difference"], name)

    # The tensor comes mirrored: the picture's upper half lies in the lower rows.
    mean_of_part("top-bright", "half_side", "side", "rows")
    mean_of_part("centre-bright", "quarter", "three_quarters", "area")
    add("Concat", AXES, "measures", axis=1)

    outputs = tail(nodes, constants, "measures", length, output, element_type, broken)
    inputs = [helper.make_tensor_value_info("pixel_values", TensorProto.FLOAT, [1, 3, SIDE, SIDE])]
    save(path, nodes, inputs, outputs, constants)


def measures(word):
    return [ENGLISH[word].get(axis, 0) for axis in AXES]


def make_text(path, length, words, first_id, output="text_features", element_type=TensorProto.FLOAT, broken=None):
    """`words`: the English word behind each id from `first_id` on; every other id counts nothing."""
    constants = [
        constant("table", [measures(word) for word in words] + [[0] * len(AXES)]),
        constant("first", first_id, np.int32),
        constant("count", len(words), np.int32),
        constant("none", -1, np.int32),
        constant("last_axis", [2], np.int64),
        constant("tokens", [1], np.int64),
    ]
    nodes = [
        helper.make_node("Sub", ["input_ids", "first"], ["offsets"]),
        helper.make_node("Greater", ["offsets", "none"], ["not_below"]),
        helper.make_node("Less", ["offsets", "count"], ["not_above"]),
        helper.make_node("And", ["not_below", "not_above"], ["known"]),
        helper.make_node("Where", ["known", "offsets", "count"], ["rows"]),
        helper.make_node("Gather", ["table", "rows"], ["each"], axis=0),
        helper.make_node("Cast", ["attention_mask"], ["mask"], to=TensorProto.FLOAT),
        helper.make_node("Unsqueeze", ["mask", "last_axis"], ["weights"]),
        helper.make_node("Mul", ["each", "weights"], ["counted"]),
        helper.make_node("ReduceSum", ["counted", "tokens"], ["sum"], keepdims=0),
    ]
    outputs = tail(nodes, constants, "sum", length, output, element_type, broken)
    inputs = [helper.make_tensor_value_info(name, TensorProto.INT32, [1, CONTEXT])
              for name in ("input_ids", "attention_mask")]
    save(path, nodes, inputs, outputs, constants)


def write_vocabulary(path, vocabulary):
    path.write_text(json.dumps(vocabulary, ensure_ascii=False, indent=0), encoding="utf-8")


def english_vocabulary():
    vocabulary = {word + "</w>": FIRST_ENGLISH_ID + index for index, word in enumerate(ENGLISH)}
    vocabulary.update({"<|startoftext|>": 49406, "<|endoftext|>": 49407})
    return vocabulary


def chinese_vocabulary():
    vocabulary = dict(CHINESE_SPECIAL)
    vocabulary.update({word: FIRST_CHINESE_ID + index for index, word in enumerate(CHINESE)})
    return vocabulary


def element(length, index, value, elsewhere):
    """A row of `elsewhere` with `value` at `index`."""
    row = np.full((1, length), elsewhere, dtype=np.float32)
    row[0, index] = value
    return row


def make_variants(folder):
    length = LENGTHS["openai"]
    words = list(ENGLISH)
    zero = {"factor": np.zeros((1, length)), "offset": np.zeros((1, length))}
    not_finite = element(length, 1, np.nan, 0)
    not_finite[0, 2] = np.inf
    not_a_number = {"factor": np.ones((1, length)), "offset": not_finite}
    # Large enough that the element types without a fraction show something.
    large = {"factor": np.full((1, length), 100.0), "offset": np.zeros((1, length))}

    make_vision(folder / "VisionNaN.onnx", length, broken=not_a_number)
    make_vision(folder / "VisionZero.onnx", length, broken=zero)
    make_vision(folder / "VisionOtherOutput.onnx", length, output="embedding")
    make_vision(folder / "VisionDouble.onnx", length, element_type=TensorProto.DOUBLE)
    make_vision(folder / "VisionHalf.onnx", length, element_type=TensorProto.FLOAT16)
    make_vision(folder / "VisionInteger.onnx", length, element_type=TensorProto.INT64, broken=large)
    make_vision(folder / "VisionText.onnx", length, element_type=TensorProto.STRING)
    make_vision(folder / "VisionLonger.onnx", length + 4)
    make_text(folder / "TextNaN.onnx", length, words, FIRST_ENGLISH_ID, broken=not_a_number)
    make_text(folder / "TextZero.onnx", length, words, FIRST_ENGLISH_ID, broken=zero)
    make_text(folder / "TextOtherOutput.onnx", length, words, FIRST_ENGLISH_ID, output="embedding")
    make_text(folder / "TextDouble.onnx", length, words, FIRST_ENGLISH_ID, element_type=TensorProto.DOUBLE)
    (folder / "NotAnEncoder.onnx").write_bytes(b"This is no encoder.\n")


def main():
    destination = pathlib.Path(sys.argv[1])

    chinese = destination / "chinese"
    make_vision(chinese / "ChineseClipVisionEncoder.onnx", LENGTHS["chinese"])
    make_text(chinese / "ChineseClipTextEncoder.onnx", LENGTHS["chinese"], list(CHINESE.values()), FIRST_CHINESE_ID)
    write_vocabulary(chinese / "chinese_vocab.json", chinese_vocabulary())

    openai = destination / "openai"
    make_vision(openai / "ClipVisionEncoder.onnx", LENGTHS["openai"])
    make_text(openai / "ClipTextEncoder.onnx", LENGTHS["openai"], list(ENGLISH), FIRST_ENGLISH_ID)
    write_vocabulary(openai / "vocab.json", english_vocabulary())

    make_variants(destination / "variants")


if __name__ == "__main__":
    main()
