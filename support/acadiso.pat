;; Hatch patterns of the Veltarn workbench, in millimetres for metric drawings.
;; Each pattern: a header "*NAME, description", then one line per family of lines:
;; angle, x-origin, y-origin, delta-x, delta-y [, dash, gap, ...]
*SOLID, Solid fill
45, 0,0, 0,3.175
*LINE, Parallel horizontal lines
0, 0,0, 0,3
*DIAGONAL, Parallel lines at 45 degrees
45, 0,0, 0,3
*NET, Square grid of horizontal and vertical lines
0, 0,0, 0,3
90, 0,0, 0,3
*CROSSHATCH, Diagonal grid at 45 and 135 degrees
45, 0,0, 0,3
135, 0,0, 0,3
*DASHLINE, Dashed horizontal lines, staggered
0, 0,0, 3,3, 3,-1.5
*DOTS, Staggered rows of dots
0, 0,0, .75,1.5, 0,-1.5
*GRAVEL_FILL, Short dashes in two directions
30, 0,0, 2.5,3.8, 1.2,-5
120, 1.2,.5, 2.5,3.8, 1,-5.2
