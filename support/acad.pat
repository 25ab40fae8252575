;; Hatch patterns of the Veltarn workbench, in drawing units for inch-based drawings.
;; Each pattern: a header "*NAME, description", then one line per family of lines:
;; angle, x-origin, y-origin, delta-x, delta-y [, dash, gap, ...]
*SOLID, Solid fill
45, 0,0, 0,.125
*LINE, Parallel horizontal lines
0, 0,0, 0,.125
*DIAGONAL, Parallel lines at 45 degrees
45, 0,0, 0,.125
*NET, Square grid of horizontal and vertical lines
0, 0,0, 0,.125
90, 0,0, 0,.125
*CROSSHATCH, Diagonal grid at 45 and 135 degrees
45, 0,0, 0,.125
135, 0,0, 0,.125
*DASHLINE, Dashed horizontal lines, staggered
0, 0,0, .125,.125, .125,-.0625
*DOTS, Staggered rows of dots
0, 0,0, .03125,.0625, 0,-.0625
*GRAVEL_FILL, Short dashes in two directions
30, 0,0, .1,.15, .05,-.2
120, .05,.02, .1,.15, .04,-.21
