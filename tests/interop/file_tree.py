"""What stands in an HDF5 file, object by object, apart from where and when it was written."""
import h5py


def describe_type(type_id):
    if type_id.get_class() == h5py.h5t.STRING:
        padding = {h5py.h5t.STR_NULLTERM: "terminated", h5py.h5t.STR_NULLPAD: "padded"}
        return f"string {type_id.get_size()} {padding.get(type_id.get_strpad(), 'other')}"
    if type_id.get_class() == h5py.h5t.COMPOUND:
        fields = [f"{type_id.get_member_name(i).decode()}@{type_id.get_member_offset(i)} "
                  f"{describe_type(type_id.get_member_type(i))}"
                  for i in range(type_id.get_nmembers())]
        return f"record {type_id.get_size()} ({', '.join(fields)})"
    return type_id.dtype.str


def attributes_of(item):
    lines = []
    for name in sorted(item.attrs):
        attribute = h5py.h5a.open(item.id, name.encode())
        lines.append(f"  @{name} {describe_type(attribute.get_type())} {attribute.shape} "
                     f"{item.attrs[name]!r}")
    return lines


def describe_dataset(dataset):
    return (f"{describe_type(dataset.id.get_type())} {dataset.shape} at most {dataset.maxshape} "
            f"chunks {dataset.chunks} filters {dataset.id.get_create_plist().get_nfilters()} "
            f"{dataset[()].tobytes().hex()}")


def describe(path):
    """Returns the lines that describe a file; equal lines mean equal files."""
    with h5py.File(path, "r") as file:
        lines = ["/", *attributes_of(file)]

        def visit(name, item):
            what = describe_dataset(item) if isinstance(item, h5py.Dataset) else "group"
            lines.extend([f"/{name} {what}", *attributes_of(item)])

        file.visititems(visit)
        return lines
