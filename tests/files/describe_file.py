"""Prints every object and attribute of an HDF5 file, one line each, in ascending order of the paths.

Uses h5py alone, so it sees a file as programs outside this library do.
"""

import sys

import h5py


def describe_attributes(path, item):
    for name in sorted(item.attrs):
        stored = item.attrs.get_id(name)
        value = item.attrs[name]
        print(f"{path} @{name} {stored.dtype.str} {stored.shape} {value.tolist()}")


def describe(path, item):
    if isinstance(item, h5py.Dataset):
        fields = item.dtype.fields or {}
        types = " ".join(f"{name}:{kind[0].str}" for name, kind in fields.items()) or item.dtype.str
        print(f"{path} {types} {item.shape} {item[()].tolist()}")
    else:
        print(f"{path} group")
    describe_attributes(path, item)


def main():
    with h5py.File(sys.argv[1], "r") as file:
        describe("/", file)
        paths = []
        file.visit(paths.append)
        for path in sorted(paths):
            describe("/" + path, file[path])


if __name__ == "__main__":
    main()
