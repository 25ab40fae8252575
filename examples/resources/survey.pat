;; Hatch patterns of the utility survey classifier, in metres.
;; angle, x-origin, y-origin, delta-x, delta-y [, dash, gap, ...]
*WETLAND, Wetland: short dashes in rows
0, 0,0, 0.6,0.6, 0.4,-0.2
0, 0.3,0.3, 0.6,0.6, 0.2,-0.4
*GRAVEL_SURFACE, Gravel: scattered dots
0, 0,0, 0.25,0.3, 0,-0.5
60, 0.1,0.05, 0.3,0.4, 0,-0.6
*PAVING_SLABS, Paving slabs 0.6 x 0.6
0, 0,0, 0,0.6
90, 0,0, 0,0.6
*LAWN, Lawn: tufts
45, 0,0, 0.5,0.5, 0.1,-0.6
135, 0.07,0, 0.5,0.5, 0.1,-0.6
*BUILDING_FILL, Building: diagonal lines
45, 0,0, 0,0.5
