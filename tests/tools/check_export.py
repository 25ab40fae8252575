#!/usr/bin/python3
"""Checks a file veltarn export wrote against the drawing it came from, each read by a reader of
its own: GDAL (ogr2ogr) reads the export, ezdxf the drawing.

Usage: check_export.py DRAWING EXPORTED TOLERANCE

For every feature GDAL reads, the entity with its handle must exist; its geometry type must be the
one its kind gives (LINE a LineString, CIRCLE a Polygon, a closed LWPOLYLINE a Polygon...); every
vertex must lie on the entity's true curve, and the middle of every chord within TOLERANCE of it
(for arcs and circles: every vertex on the circle, every chord's sagitta at most TOLERANCE; a spline
of fit points only must give its fit points); and its
properties TABLE.FIELD (TABLE[2].FIELD for a table's second record) must be the values of the
entity's object-data records as ezdxf reads them. Prints "features N vertices N" and exits 0, or
prints what is wrong and exits 1.
"""
import json
import math
import subprocess
import sys

import ezdxf
from ezdxf.math import bulge_to_arc

# The geometry each kind gives; None: no geometry (an endless line, a mesh).
TYPES = {"LINE": "LineString", "CIRCLE": "Polygon", "ARC": "LineString", "POINT": "Point", "TEXT": "Point",
         "INSERT": "Point", "MTEXT": "Point", "DIMENSION": "Point", "MULTILEADER": "Point", "ELLIPSE": "Polygon",
         "SPLINE": "LineString", "HATCH": "Polygon", "SOLID": "Polygon", "3DFACE": "Polygon", "WIPEOUT": "Polygon",
         "MLINE": "LineString", "XLINE": None, "RAY": None, "MESH": None}
# Curves checked against their true shape, sampled this finely.
FINE = 20000


def gdal_features(exported):
    """The features as GDAL reads them, written out by GDAL itself as GeoJSON."""
    command = ["ogr2ogr", "-f", "GeoJSON", "/vsistdout/", exported]
    if exported.lower().endswith(".csv"):
        command[4:4] = ["-oo", "AUTODETECT_TYPE=YES", "-oo", "KEEP_GEOM_COLUMNS=NO"]
    out = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return json.loads(out)["features"]


def records(doc, entity):
    """TABLE.FIELD -> value for every record on the entity, as the object-data store lays them out."""
    values = {}
    if not entity.has_extension_dict:
        return values
    tables = doc.rootdict.get("ODEMUDATA")
    for name, xrecord in entity.get_extension_dict().items():
        if tables is None or name not in tables:
            continue
        definition = list(tables[name].tags)
        fields = [value for code, value in definition[0::2]]
        data = list(xrecord.tags)
        for n in range(len(data) // max(1, len(fields))):
            label = name if n == 0 else f"{name}[{n + 1}]"
            for field, (code, value) in zip(fields, data[n * len(fields):(n + 1) * len(fields)]):
                values[f"{label}.{field}"] = value
    return values


def distance_to_polyline(p, line):
    best = math.inf
    for a, b in zip(line, line[1:]):
        ax, ay, bx, by = a[0], a[1], b[0], b[1]
        dx, dy = bx - ax, by - ay
        squared = dx * dx + dy * dy
        t = 0.0 if squared == 0 else max(0.0, min(1.0, ((p[0] - ax) * dx + (p[1] - ay) * dy) / squared))
        best = min(best, math.hypot(p[0] - ax - t * dx, p[1] - ay - t * dy))
    return best


def distance_to_arc(p, center, radius, start, end):
    """To the counter-clockwise arc from `start` to `end` (radians) about `center`."""
    angle = math.atan2(p[1] - center[1], p[0] - center[0])
    span = (end - start) % math.tau
    if (angle - start) % math.tau <= span:
        return abs(math.hypot(p[0] - center[0], p[1] - center[1]) - radius)
    ends = [(center[0] + radius * math.cos(a), center[1] + radius * math.sin(a)) for a in (start, end)]
    return min(math.hypot(p[0] - q[0], p[1] - q[1]) for q in ends)


def curve_distance(entity):
    """The distance from a point to the entity's true curve: exact for polylines' lines and arcs, a
    polyline of FINE points on the curve (ezdxf's own evaluation) for ellipses and splines."""
    if entity.dxftype() == "LWPOLYLINE":
        points = list(entity.get_points("xyb"))
        pairs = list(zip(points, points[1:] + (points[:1] if entity.closed else [])))

        def distance(p):
            best = math.inf
            for (x1, y1, bulge), (x2, y2, _) in pairs:
                if bulge:
                    center, start, end, radius = bulge_to_arc((x1, y1), (x2, y2), bulge)
                    best = min(best, distance_to_arc(p, center, radius, start, end))
                else:
                    best = min(best, distance_to_polyline(p, [(x1, y1), (x2, y2)]))
            return best
        return distance
    tool = entity.construction_tool()
    if entity.dxftype() == "ELLIPSE":
        fine = [(v.x, v.y) for v in tool.vertices(tool.params(FINE))]
    else:
        fine = [(v.x, v.y) for v in tool.approximate(FINE)]
    return lambda p: distance_to_polyline(p, fine)


def parts_of(geometry):
    kind, coords = geometry["type"], geometry["coordinates"]
    if kind == "Point":
        return [[coords]]
    if kind in ("LineString",):
        return [coords]
    return coords  # MultiLineString, Polygon


def check_feature(feature, entity, doc, tolerance, problems):
    handle = feature["properties"]["handle"]
    geometry = feature["geometry"]
    kind = entity.dxftype()
    expected = TYPES.get(kind)
    if kind == "LWPOLYLINE":
        expected = "Polygon" if entity.closed else "LineString"
    if kind == "POLYLINE":
        expected = None if entity.is_poly_face_mesh else "Polygon" if entity.is_closed else "LineString"
    if kind not in TYPES and kind not in ("LWPOLYLINE", "POLYLINE"):
        problems.append(f"{handle}: a {kind}, which this check does not know")
        return 0
    if (geometry or {}).get("type") != expected:
        problems.append(f"{handle} {kind}: a {(geometry or {}).get('type')} geometry, not a {expected}")
        return 0
    if geometry is None:
        return 0
    parts = parts_of(geometry)
    count = sum(len(p) for p in parts)
    if geometry["type"] == "Polygon":
        for ring in parts:
            if ring[0] != ring[-1]:
                problems.append(f"{handle}: a ring that is not closed")
    if kind in ("ARC", "CIRCLE"):
        c, r = entity.dxf.center, entity.dxf.radius
        for part in parts:
            for p in part:
                if abs(math.hypot(p[0] - c.x, p[1] - c.y) - r) > 1e-6 * max(1.0, r):
                    problems.append(f"{handle} {kind}: vertex {p} is off the circle")
            for a, b in zip(part, part[1:]):
                sagitta = r - math.hypot((a[0] + b[0]) / 2 - c.x, (a[1] + b[1]) / 2 - c.y)
                if sagitta > tolerance * (1 + 1e-9):
                    problems.append(f"{handle} {kind}: a chord strays {sagitta} from the circle")
        if kind == "ARC":
            start, end = entity.start_point, entity.end_point
            line = parts[0]
            if math.hypot(line[0][0] - start.x, line[0][1] - start.y) > 1e-6 or \
                    math.hypot(line[-1][0] - end.x, line[-1][1] - end.y) > 1e-6:
                problems.append(f"{handle} ARC: does not run from its start point to its end point")
    if kind == "SPLINE" and not len(entity.control_points):
        # A spline of fit points only is exported as its fit points joined straight: the curve
        # through them is not rebuilt. Its vertices must be those points.
        fit = [(float(v[0]), float(v[1])) for v in entity.fit_points]
        if [tuple(p[:2]) for p in parts[0]] != fit:
            problems.append(f"{handle} SPLINE: its vertices are not its fit points")
    elif kind in ("LWPOLYLINE", "ELLIPSE", "SPLINE"):
        distance = curve_distance(entity)
        slack = 1e-6
        for part in parts:
            for p in part:
                if distance(p) > slack:
                    problems.append(f"{handle} {kind}: vertex {p} is off the curve")
            for a, b in zip(part, part[1:]):
                middle = ((a[0] + b[0]) / 2, (a[1] + b[1]) / 2)
                if distance(middle) > tolerance + slack:
                    problems.append(f"{handle} {kind}: a chord strays further than {tolerance}")
    if kind in ("POINT", "TEXT", "INSERT"):
        where = entity.dxf.location if kind == "POINT" else entity.dxf.insert
        p = parts[0][0]
        if math.hypot(p[0] - where.x, p[1] - where.y) > 1e-9:
            problems.append(f"{handle} {kind}: the point {p} is not at {where}")

    properties = feature["properties"]
    for name, value in records(doc, entity).items():
        got = properties.get(name)
        same = got == value if isinstance(value, str) else isinstance(got, (int, float)) and float(got) == float(value)
        if not same:
            problems.append(f"{handle}: {name} is {got!r}, the drawing holds {value!r}")
    return count


def main(argv):
    drawing, exported, tolerance = argv[0], argv[1], float(argv[2])
    doc = ezdxf.readfile(drawing)
    problems = []
    vertices = 0
    features = gdal_features(exported)
    for feature in features:
        handle = feature["properties"].get("handle")
        entity = doc.entitydb.get(handle)
        if entity is None:
            problems.append(f"no entity {handle}")
            continue
        vertices += check_feature(feature, entity, doc, tolerance, problems)
    for problem in problems[:40]:
        print(problem)
    print(f"features {len(features)} vertices {vertices}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
