#!/usr/bin/env python3
"""Draws displacement and stress of the last state: left as the domain files have them, pulled apart, right as
the merged file has them.

usage: picture.py PICTURE.png MERGED.h5 DOMAIN.h5 ..."""
import sys

import h5py
import matplotlib
import numpy as np

matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402 (the backend comes first)
from mpl_toolkits.mplot3d.art3d import Poly3DCollection  # noqa: E402

TETRAHEDRON = [(0, 1, 2), (0, 1, 3), (1, 2, 3), (0, 2, 3)]
BRICK = [(0, 1, 2, 3), (4, 5, 6, 7), (0, 1, 5, 4), (1, 2, 6, 5), (2, 3, 7, 6), (3, 0, 4, 7)]
WEDGE = [(0, 1, 2), (3, 4, 5), (0, 1, 4, 3), (1, 2, 5, 4), (2, 0, 3, 5)]
FACES = {"TE4": TETRAHEDRON, "TE10": TETRAHEDRON, "HE8": BRICK, "HE20": BRICK, "PE6": WEDGE, "PE15": WEDGE,
         "TR3": [(0, 1, 2)], "TR6": [(0, 1, 2)], "QU4": [(0, 1, 2, 3)], "QU8": [(0, 1, 2, 3)]}


class Model:
    """Nodes, elements, and the last displacements and stresses."""

    def __init__(self, path):
        with h5py.File(path, "r") as file:
            root = file["post"]
            place = root["constant/entityresults/NODE/COORD/vakblock"]
            self.nodes = place["entid"][:]
            self.points = place["res"][:]
            self.elements = {name: group["vakblock/ic"][:] for name, group in root["constant/connectivities"].items()
                             if name in FACES}
            states = [state["entityresults/NODE"] for _, state in sorted(root["singlestate"].items())]
            self.displacement = self.magnitude(self.at_nodes(self.last(states, "DISP")))
            self.stress = self.von_mises(self.at_nodes(self.last(states, "STRESS")))

    @staticmethod
    def last(states, name):
        return [state[name] for state in states if name in state][-1]["vakblock"]

    def at_nodes(self, block):
        values = np.zeros((self.nodes.max() + 1,) + block["res"].shape[1:])
        values[block["entid"][:]] = block["res"][:]
        if values.ndim == 3:  # complex
            values = np.hypot(values[..., 0], values[..., 1])
        return values

    @staticmethod
    def magnitude(vectors):
        return np.linalg.norm(vectors, axis=1)

    @staticmethod
    def von_mises(s):
        xx, yy, zz, xy, yz, zx = s.T
        return np.sqrt(((xx - yy) ** 2 + (yy - zz) ** 2 + (zz - xx) ** 2) / 2 + 3 * (xy ** 2 + yz ** 2 + zx ** 2))

    def skin(self):
        """The faces that one element alone has, as lists of nodes, and the row of each node."""
        row = np.zeros(self.nodes.max() + 1, dtype=int)
        row[self.nodes] = np.arange(len(self.nodes))
        once = {}
        for name, elements in self.elements.items():
            for nodes in elements:
                for face in FACES[name]:
                    corners = nodes[list(face)]
                    key = tuple(sorted(corners))
                    if once.pop(key, None) is None:
                        once[key] = corners
        return list(once.values()), row


def draw(axes, models, values_of, limits, apart):
    lower, upper = models[0].points.min(axis=0), models[0].points.max(axis=0)
    for model in models[1:]:
        lower, upper = np.minimum(lower, model.points.min(axis=0)), np.maximum(upper, model.points.max(axis=0))
    middle = (lower + upper) / 2
    colours = pyplot.get_cmap("viridis")
    for model in models:
        shift = apart * (model.points.mean(axis=0) - middle)
        faces, row = model.skin()
        values = values_of(model)
        polygons = [model.points[row[face]] + shift for face in faces]
        shade = np.array([values[face].mean() for face in faces])
        shade = np.clip((shade - limits[0]) / max(limits[1] - limits[0], 1e-30), 0, 1)
        axes.add_collection3d(Poly3DCollection(polygons, facecolors=colours(shade), edgecolors="0.25", linewidths=0.1))
    size = (upper - lower).max() / 2 * (0.95 + 0.25 * apart)
    for limit, centre in zip((axes.set_xlim, axes.set_ylim, axes.set_zlim), middle):
        limit(centre - size, centre + size)
    axes.set_box_aspect((1, 1, 1))
    axes.view_init(elev=18, azim=-125)
    axes.set_axis_off()


def main(picture, merged_file, *domain_files):
    merged = Model(merged_file)
    domains = [Model(file) for file in domain_files]
    figure = pyplot.figure(figsize=(11, 9), constrained_layout=True)
    quantities = [("displacement", lambda model: model.displacement), ("von Mises stress", lambda model: model.stress)]
    for line, (name, values_of) in enumerate(quantities):
        present = values_of(merged)[merged.nodes]
        limits = present.min(), np.percentile(present, 99)
        for column, (models, apart) in enumerate([(domains, 0.8), ([merged], 0.0)]):
            axes = figure.add_subplot(2, 2, 2 * line + column + 1, projection="3d")
            draw(axes, models, values_of, limits, apart)
            axes.set_title(f"{name}: " + (f"{len(models)} domain files" if column == 0 else "merged"))
        scale = pyplot.cm.ScalarMappable(pyplot.Normalize(*limits), "viridis")
        figure.colorbar(scale, ax=figure.axes[-2:], shrink=0.7)
    figure.savefig(picture, dpi=100)


if __name__ == "__main__":
    main(*sys.argv[1:])
