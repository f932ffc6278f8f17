"""VTK shows the same arrays; pictures and histograms have in them what they should."""
import gc
import os
import subprocess
import sys

import numpy as np
import pytest

import orvml

pytest.importorskip("vtkmodules.vtkCommonDataModel")
from vtkmodules.util.numpy_support import vtk_to_numpy  # noqa: E402
from vtkmodules.vtkCommonDataModel import VTK_TETRA, VTK_TRIANGLE, VTK_WEDGE  # noqa: E402
from vtkmodules.vtkFiltersCore import vtkMassProperties, vtkTriangleFilter  # noqa: E402
from vtkmodules.vtkFiltersGeometry import vtkDataSetSurfaceFilter  # noqa: E402
from vtkmodules.vtkIOImage import vtkPNGReader  # noqa: E402


def address(array):
    return array.__array_interface__["data"][0]


def volume_inside(grid):
    surface = vtkDataSetSurfaceFilter()
    surface.SetInputData(grid)
    triangles = vtkTriangleFilter()
    triangles.SetInputConnection(surface.GetOutputPort())
    mass = vtkMassProperties()
    mass.SetInputConnection(triangles.GetOutputPort())
    return mass.GetVolume()


@pytest.mark.parametrize("read", [orvml.read, orvml.open])
def test_vtk_shows_the_arrays_of_the_document(cube_file, read):
    document = read(cube_file)
    grid = document.to_vtk()

    assert grid.GetNumberOfPoints() == 8 and grid.GetNumberOfCells() == 6
    assert {grid.GetCellType(i) for i in range(6)} == {VTK_TETRA}
    assert volume_inside(grid) == pytest.approx(1)
    for shown, own in [
            (grid.GetPoints().GetData(), document.points),
            (grid.GetCells().GetConnectivityArray(), document.elements[0].node_indices),
            (grid.GetPointData().GetArray("temperature"), document.nodes.attributes["temperature"]),
            (grid.GetCellData().GetArray("material"), document.elements.attributes["material"])]:
        assert address(vtk_to_numpy(shown)) == address(own)
        assert np.array_equal(vtk_to_numpy(shown).reshape(own.shape), own)


def test_the_arrays_live_as_long_as_vtk_has_them(cube_file):
    grid = orvml.open(cube_file).to_vtk()
    points = grid.GetPoints()
    del grid
    gc.collect()
    os.unlink(cube_file)
    assert vtk_to_numpy(points.GetData())[7].tolist() == [1, 1, 1]


def test_every_array_of_a_grid_lives_as_long_as_the_grid(tmp_path):
    # Large enough that memory which was let go is no longer there at all.
    cells = np.arange(800_000, dtype=np.int32).reshape(-1, 4)
    document = orvml.Output(np.random.default_rng(2).random((800_000, 3)),
                            elements=[("tetrahedron", cells)])
    orvml.write(tmp_path / "large.h5", document, flush=False)
    for grid in (orvml.read(tmp_path / "large.h5").to_vtk(), document.copy().to_vtk()):
        gc.collect()
        assert np.array_equal(vtk_to_numpy(grid.GetCells().GetConnectivityArray()), cells.ravel())
        assert np.array_equal(vtk_to_numpy(grid.GetCells().GetOffsetsArray()),
                              np.arange(0, 800_001, 4))
        assert (vtk_to_numpy(grid.GetCellTypesArray()) == VTK_TETRA).all()
        assert np.array_equal(vtk_to_numpy(grid.GetPoints().GetData()), document.points)


def test_the_memory_goes_with_the_last_that_has_it(tmp_path):
    document = orvml.Output(np.zeros((500_000, 3)), elements=[("tetrahedron", [[0, 1, 2, 3]])])
    orvml.write(tmp_path / "large.h5", document, flush=False)

    def resident():
        return int(open("/proc/self/statm").read().split()[1]) * os.sysconf("SC_PAGE_SIZE")

    orvml.read(tmp_path / "large.h5").to_vtk()
    gc.collect()
    before = resident()
    for _ in range(20):
        orvml.read(tmp_path / "large.h5").to_vtk()
    gc.collect()
    assert resident() - before < 40e6  # one is 12 MB


def test_groups_of_a_file_are_joined_without_a_copy(tmp_path):
    document = orvml.Output(
        [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1], [1, 0, 1], [0, 1, 1], [0, 0, 2]],
        elements=[("prism", [[0, 1, 2, 3, 4, 5]]), ("tetrahedron", [[3, 4, 5, 6]])])
    orvml.write(tmp_path / "mixed.h5", document)
    read = orvml.open(tmp_path / "mixed.h5")
    grid = read.to_vtk()

    assert [grid.GetCellType(i) for i in range(2)] == [VTK_WEDGE, VTK_TETRA]
    nodes = vtk_to_numpy(grid.GetCells().GetConnectivityArray())
    assert nodes.tolist() == [0, 1, 2, 3, 4, 5, 3, 4, 5, 6]
    assert address(nodes) == address(read.elements[0].node_indices)
    assert vtk_to_numpy(document.to_vtk().GetCells().GetConnectivityArray()).tolist() == nodes.tolist()


def test_prisms_are_turned_when_asked(tmp_path):
    document = orvml.Output(
        [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1], [1, 0, 1], [0, 1, 1]],
        elements=[("prism", [[0, 1, 2, 3, 4, 5]])])
    grid = document.to_vtk(turn_prisms=True)
    assert vtk_to_numpy(grid.GetCells().GetConnectivityArray()).tolist() == [0, 2, 1, 3, 5, 4]
    assert document.elements[0].node_indices.tolist() == [[0, 1, 2, 3, 4, 5]]


def test_other_cells_and_plane_meshes_are_shown(cube):
    assert cube.to_vtk("faces").GetCellType(0) == VTK_TRIANGLE
    flat = orvml.Input([[0, 0], [1, 0], [0, 1]], faces=[("triangle", [[0, 1, 2]])]).to_vtk()
    assert flat.GetPoint(1) == (1, 0, 0) and flat.GetNumberOfCells() == 1
    assert orvml.Input().to_vtk().GetNumberOfCells() == 0
    with pytest.raises(ValueError, match="cells is 'nodes', expected one of edges, faces, elements"):
        cube.to_vtk("nodes")


def test_what_vtk_would_fall_on_is_refused(cube):
    cube.elements[0].node_indices[0, 0] = 8
    with pytest.raises(ValueError, match=r"elements\[0\] names a node that does not exist"):
        cube.to_vtk()
    sphere = orvml.Input([[0, 0, 0]], elements=[("sphere", [[0]])])
    with pytest.raises(ValueError, match="VTK has no cell for <1 of sphere with 1 nodes>"):
        sphere.to_vtk()


def pixels_of(path):
    reader = vtkPNGReader()
    reader.SetFileName(str(path))
    reader.Update()
    image = reader.GetOutput()
    width, height, _ = image.GetDimensions()
    return vtk_to_numpy(image.GetPointData().GetScalars()).reshape(height, width, -1)[::-1]


def colours_of(pixels):
    return len(np.unique(pixels.reshape(-1, pixels.shape[-1]), axis=0))


def test_a_picture_shows_the_mesh_in_front_of_white(cube, tmp_path):
    cube.plot(tmp_path / "plain.png", size=(300, 200))
    pixels = pixels_of(tmp_path / "plain.png")

    assert pixels.shape == (200, 300, 3)
    assert (pixels[0, 0] == 255).all()
    drawn = (pixels != 255).any(axis=2)
    assert 0.1 < drawn.mean() < 0.8 and drawn[100, 150]


@pytest.mark.parametrize("color", ["temperature", "material", "scaled Jacobian"])
def test_a_picture_is_coloured_by_what_is_asked(cube, tmp_path, color):
    cube.plot(tmp_path / "plain.png", edges=False, size=(300, 200))
    cube.plot(tmp_path / "coloured.png", color, edges=False, size=(300, 200))
    plain, coloured = pixels_of(tmp_path / "plain.png"), pixels_of(tmp_path / "coloured.png")

    assert not np.array_equal(plain, coloured)
    assert colours_of(coloured) > colours_of(plain)


def test_the_ends_of_the_range_have_the_ends_of_the_palette(cube, tmp_path):
    flat = orvml.Output([[0, 0], [1, 0], [1, 1], [0, 1], [2, 0], [2, 1]],
                        faces=[("quadrilateral", [[0, 1, 2, 3], [1, 4, 5, 2]])])
    flat.faces.attributes["material"] = [1, 2]
    flat.plot(tmp_path / "flat.png", "material", edges=False, size=(600, 400))
    pixels = pixels_of(tmp_path / "flat.png").astype(int)

    left, right = pixels[200, 180], pixels[200, 420]
    assert left[2] > left[1] > 0 and left[0] < 120  # violet
    assert right[0] > 180 and right[1] > 160 and right[2] < 90  # yellow


@pytest.mark.parametrize("name", ["größe $x_1$", "\udcff", "n" * 79])
def test_any_name_can_be_drawn(cube, tmp_path, name):
    cube.nodes.attributes[name] = np.arange(8)
    cube.plot(tmp_path / "named.png", name, size=(300, 200))
    assert (pixels_of(tmp_path / "named.png")[:20] != 255).any()


def test_values_that_are_no_numbers_are_grey(tmp_path):
    flat = orvml.Output([[0, 0], [1, 0], [1, 1], [0, 1], [2, 0], [2, 1]],
                        faces=[("quadrilateral", [[0, 1, 2, 3], [1, 4, 5, 2]])])
    flat.faces.attributes["gap"] = [np.nan, 2.0]
    flat.plot(tmp_path / "gap.png", "gap", edges=False, size=(600, 400))
    left = pixels_of(tmp_path / "gap.png").astype(int)[200, 180]
    assert np.ptp(left) < 12 and left[0] > 120
    flat.faces.attributes["none"] = [np.nan, np.inf]
    flat.plot(tmp_path / "none.png", "none")


def test_a_colour_that_is_none_is_told(cube, tmp_path):
    with pytest.raises(ValueError, match="color is 'beauty', expected one of material, temperature, "):
        cube.plot(tmp_path / "a.png", "beauty")
    with pytest.raises(FileNotFoundError):
        cube.plot(tmp_path / "missing" / "a.png")


def run_program(program, *arguments, **environment):
    kept = {name: value for name, value in os.environ.items() if name != "DISPLAY"}
    return subprocess.run([sys.executable, "-c", program, *map(str, arguments)], text=True,
                          capture_output=True, env=dict(kept, **environment))


@pytest.mark.parametrize("display", [{}, {"DISPLAY": ""}, {"DISPLAY": ":77"}],
                         ids=["none", "empty", "dead"])
def test_pictures_have_a_display_of_their_own_that_ends_with_the_program(cube_file, tmp_path, display):
    program = ("import orvml, os, sys\n"
               "before = os.environ.get('DISPLAY')\n"
               "for i in range(3): orvml.read(sys.argv[1]).plot(f'{sys.argv[2]}/{i}.png', size=(90, 60))\n"
               "assert os.environ.get('DISPLAY') == before\n"
               "from orvml import _pictures\n"
               "print(_pictures._server.process.pid)\n")
    run = run_program(program, cube_file, tmp_path, **display)
    assert run.returncode == 0, run.stderr
    assert len(list(tmp_path.glob("*.png"))) == 3
    assert not os.path.exists(f"/proc/{run.stdout.strip()}")


def test_an_interrupt_leaves_the_display_and_another_is_made_when_it_is_gone(cube_file, tmp_path):
    program = ("import orvml, os, signal, sys\n"
               "os.setpgid(0, 0)\n"
               "document = orvml.read(sys.argv[1])\n"
               "picture = sys.argv[2] + '/a.png'\n"
               "document.plot(picture, size=(90, 60))\n"
               "try: os.killpg(0, signal.SIGINT)\n"
               "except KeyboardInterrupt: pass\n"
               "document.plot(picture, size=(90, 60))\n"
               "from orvml import _pictures\n"
               "_pictures._server.process.kill()\n"
               "_pictures._server.process.wait()\n"
               "document.plot(picture, size=(90, 60))\n"
               "print('drawn')\n")
    run = run_program(program, cube_file, tmp_path)
    assert (run.returncode, run.stdout) == (0, "drawn\n"), run.stderr


def test_threads_draw_one_after_the_other(cube_file, tmp_path):
    program = ("import orvml, sys, threading\n"
               "def draw(i): orvml.read(sys.argv[1]).plot(f'{sys.argv[2]}/{i}.png', size=(90, 60))\n"
               "threads = [threading.Thread(target=draw, args=(i,)) for i in range(4)]\n"
               "for thread in threads: thread.start()\n"
               "for thread in threads: thread.join()\n")
    run = run_program(program, cube_file, tmp_path)
    assert (run.returncode, run.stderr) == (0, "")
    assert len(list(tmp_path.glob("*.png"))) == 4


def test_without_a_display_and_xvfb_it_is_told(cube, tmp_path, monkeypatch):
    from orvml import _pictures

    monkeypatch.delenv("DISPLAY", raising=False)
    monkeypatch.setattr(_pictures, "_server", None)
    monkeypatch.setenv("PATH", str(tmp_path))
    with pytest.raises(RuntimeError, match="no display to draw on, and no Xvfb"):
        cube.plot(tmp_path / "a.png")


def test_a_picture_shows_the_cells_that_have_the_colour(cube, tmp_path):
    cube.plot(tmp_path / "a.png", "side", size=(90, 60))
    with pytest.raises(ValueError, match="expected a name that ends in .png"):
        cube.plot(tmp_path / "a.jpg")
    with pytest.raises(ValueError, match=r"size is \(0, 0\), expected two positive numbers"):
        cube.plot(tmp_path / "a.png", size=(0, 0))
    with pytest.raises(TypeError, match="size is 1.5, expected an integer"):
        cube.plot(tmp_path / "a.png", size=(1.5, 2))


def test_a_mesh_without_cells_has_an_empty_histogram():
    pytest.importorskip("matplotlib")
    assert orvml.Input(np.zeros((3, 3))).plot_quality().axes[0].get_title() == "0 elements"


def test_histograms_count_every_cell(cube, tmp_path):
    pytest.importorskip("matplotlib")
    figure = cube.plot_quality(tmp_path / "quality.png", "aspect ratio", "faces")
    axes = figure.axes[0]
    assert sum(bar.get_height() for bar in axes.patches) == 12
    assert axes.get_xlabel() == "aspect ratio" and axes.get_ylabel() == "number of faces"
    assert pixels_of(tmp_path / "quality.png").shape[:2] == (600, 1050)
    sizes = cube.plot_sizes().axes[0]
    assert sizes.get_xlabel() == "volume" and sum(bar.get_height() for bar in sizes.patches) == 6


def test_histograms_tell_of_cells_without_a_value(cube):
    pytest.importorskip("matplotlib")
    cube.elements = [("tetrahedron", cube.elements[0][:5]), ("point", [[0]])]
    assert cube.plot_quality().axes[0].get_title() == "6 elements, 1 of them without a value"
