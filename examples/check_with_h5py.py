#!/usr/bin/env python3
"""Compares an exchange file with the record of the program that wrote it.

Nothing of the library is used: h5py reads the file and this script knows the layout. The file must
hold exactly the objects and values that follow from the record, bit for bit.

    check_with_h5py.py FILE.h5 RECORD.json
    check_with_h5py.py --self-test FILE.h5 RECORD.json

The self-test changes copies of the file, one value or object at a time, and fails unless the
comparison finds each change and names where it is.
"""
import json
import os
import shutil
import sys
import tempfile

import h5py
import numpy as np

KINDS = ("Nodes", "Edges", "Faces", "Elements")
CELL_ARRAYS = ("number_of_elements_by_type", "element_types", "number_of_nodes_by_element",
               "connectivities")
PARAMETER_TABLE = np.dtype({"names": ["name", "value"], "formats": ["S80", "<f8"],
                            "offsets": [0, 80], "itemsize": 88})
FLAG = "MustBeTransmitted"


def as_array(values):
    """Integers as 32-bit integers, numbers with a point or an exponent as doubles."""
    is_integer = all(isinstance(value, int) for value in values)
    return np.array(values, dtype="<i4" if is_integer else "<f8")


def parameter_table(record):
    """The scalar parameters in ascending byte order of their names."""
    prefix = "parameter/"
    names = sorted(key[len(prefix):].encode() for key in record if key.startswith(prefix))
    table = np.zeros(len(names), dtype=PARAMETER_TABLE)
    for row, name in enumerate(names):
        table[row] = (name, record[prefix + name.decode()])
    return table


class Expected:
    """What a file must hold, from the record of its writer."""

    def __init__(self, record):
        top = "/" + record["group"]
        self.root_attributes = {
            "FORMAT": "ORVMESHLIBRARY",
            "ORVMESHLIBRARY_FORMAT_VERSION": record["formatVersion"],
            "ORVML_IO_CREATOR": record["creator"],
            "ORVML_MODULE_NAME": record["moduleName"],
            "ORVML_MODULE_FORMAT_VERSION": record["moduleFormatVersion"],
        }
        self.datasets = {}
        self.flagged = set()
        self._add_mesh(top, record)
        self._add_named_values(top, record)
        self.groups = {path[:path.rindex("/")] for path in self.datasets}
        self.groups |= {group[:group.rindex("/")] for group in self.groups} - {""}

    def _add_mesh(self, top, record):
        self.datasets[top + "/dimension"] = as_array([record["dimension"]])
        shape = (record["numberOfNodes"], record["dimension"])
        self.datasets[top + "/Nodes/coordinates"] = as_array(record["coordinates"]).reshape(shape)
        for kind in KINDS[1:]:
            if record["cells/" + kind + "/element_types"]:
                for name in CELL_ARRAYS:
                    values = record["cells/" + kind + "/" + name]
                    self.datasets[top + "/" + kind + "/" + name] = as_array(values)

    def _add_named_values(self, top, record):
        self.datasets[top + "/parameters"] = parameter_table(record)
        for key, values in record.items():
            what, _, name = key.partition("/")
            if what == "vectorParameter":
                self.datasets[top + "/ParametersVector/" + name] = as_array(values)
            elif what == "attribute":
                kind, _, name = name.partition("/")
                self.datasets[top + "/" + kind + "/Attributes/" + name] = as_array(values)
            elif what == "transmitted":
                self.flagged |= {top + "/" + name + "/Attributes/" + member for member in values}


def objects_of(file):
    found = {}
    file.visititems(lambda name, item: found.__setitem__("/" + name, item))
    return found


def is_string_attribute(file, name, text):
    """A fixed-length string with its terminator."""
    attribute = file.attrs.get_id(name)
    stored_type = attribute.get_type()
    return (isinstance(stored_type, h5py.h5t.TypeStringID) and not stored_type.is_variable_str()
            and stored_type.get_size() == len(text) + 1 and attribute.shape == ()
            and file.attrs[name] == text.encode())


def root_disagreements(file, expected):
    names = set(file.attrs)
    for name in sorted(names ^ set(expected.root_attributes)):
        yield name, "is there but should not be" if name in names else "is missing"
    for name, text in expected.root_attributes.items():
        if name in names and not is_string_attribute(file, name, text):
            yield name, "is not the text " + repr(text)


def value_disagreement(dataset, values):
    if dataset.dtype != values.dtype:
        return "has the type %s instead of %s" % (dataset.dtype, values.dtype)
    if dataset.shape != values.shape:
        return "has the extents %s instead of %s" % (dataset.shape, values.shape)
    read = dataset[()]
    if values.dtype.names:
        same = (read["name"] == values["name"]) & (
            read["value"].view("<i8") == values["value"].view("<i8"))
    elif values.dtype.kind == "f":
        same = read.view("<i8") == values.view("<i8")
    else:
        same = read == values
    if same.all():
        return None
    first = tuple(np.argwhere(~same)[0])
    return "holds %s instead of %s at %s" % (read[first].tolist(), values[first].tolist(), first)


def flag_disagreement(dataset, must_be_flagged):
    flag = dataset.attrs.get(FLAG)
    if not must_be_flagged:
        return None if flag is None else "has the flag " + FLAG
    is_one = flag is not None and flag.dtype == "<i4" and flag.shape == (1,) and flag[0] == 1
    return None if is_one else "lacks the flag " + FLAG


def disagreements(path, expected):
    """Pairs of a place in the file and what is wrong there."""
    found = []
    with h5py.File(path, "r") as file:
        found += root_disagreements(file, expected)
        objects = objects_of(file)
        wanted = expected.groups | set(expected.datasets)
        for name in sorted(set(objects) ^ wanted):
            found.append((name, "is missing" if name in wanted else "should not be there"))
        for name in sorted(set(objects) & wanted):
            if isinstance(objects[name], h5py.Group) != (name in expected.groups):
                found.append((name, "is not the right kind of object"))
            elif name in expected.datasets:
                wrong = (value_disagreement(objects[name], expected.datasets[name])
                         or flag_disagreement(objects[name], name in expected.flagged))
                if wrong:
                    found.append((name, wrong))
    return found


def changed(value):
    """Another value of the same type: the next double, the next integer."""
    return np.nextafter(value, np.inf) if value.dtype.kind == "f" else value + 1


def change_last_value(name):
    def change(file):
        values = file[name][()]
        column = values["value"] if values.dtype.names else values
        column.reshape(-1)[-1] = changed(column.reshape(-1)[-1])
        file[name][...] = values
    return change


def replace_root_attribute(name):
    def change(file):
        text = file.attrs[name]
        del file.attrs[name]
        file.attrs[name] = text[:-1] + b"?"
    return change


def remove_flag(name):
    def change(file):
        del file[name].attrs[FLAG]
    return change


def remove_object(name):
    def change(file):
        del file[name]
    return change


def add_object(name):
    def change(file):
        file[name] = np.zeros(1, dtype="<i4")
    return change


def changes_to_find(expected):
    for name in sorted(expected.root_attributes):
        yield name, replace_root_attribute(name)
    for name in sorted(expected.datasets):
        yield name, change_last_value(name)
        yield name, remove_object(name)
    for name in sorted(expected.flagged):
        yield name, remove_flag(name)
    for group in sorted(expected.groups):
        yield group + "/intruder", add_object(group + "/intruder")


def self_test(path, expected):
    count = 0
    with tempfile.TemporaryDirectory() as folder:
        copy = os.path.join(folder, "changed.h5")
        for name, change in changes_to_find(expected):
            shutil.copyfile(path, copy)
            with h5py.File(copy, "r+") as file:
                change(file)
            places = [place for place, _ in disagreements(copy, expected)]
            if places != [name]:
                sys.exit("%s: a change of %s was seen at %s" % (path, name, places))
            count += 1
    print("h5py self-test: each of %d changes to copies of %s was found"
          % (count, os.path.basename(path)))


def main(arguments):
    is_self_test = arguments[:1] == ["--self-test"]
    if len(arguments) != 2 + is_self_test:
        sys.exit(__doc__)
    path, record_path = arguments[-2:]
    with open(record_path, encoding="ascii") as record_file:
        expected = Expected(json.load(record_file))
    found = disagreements(path, expected)
    if found:
        sys.exit("\n".join("%s: %s %s" % (path, place, what) for place, what in found))
    if is_self_test:
        self_test(path, expected)
        return
    values = sum(array.size for array in expected.datasets.values())
    print("h5py: %s agrees with its record: %d datasets with %d values, %d flags, %d texts"
          % (os.path.basename(path), len(expected.datasets), values, len(expected.flagged),
             len(expected.root_attributes)))


if __name__ == "__main__":
    main(sys.argv[1:])
