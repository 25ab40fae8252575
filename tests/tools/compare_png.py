#!/usr/bin/python3
"""Compares a screenshot with its golden image, within a tolerance, and counts red pixels.

Usage: compare_png.py ACTUAL GOLDEN [--channel N] [--share S] [--diff OUT.png]

Both images must have the same size. A pixel differs when one of its channels differs by more
than N (default 48, so that font smoothing and antialiasing may vary); the images agree when at
most the share S of the pixels (default 0.01) differ. Prints "size WxH differing D of P red R",
where R counts the pixels of ACTUAL that are clearly red (what the report draws faulty objects
in), and exits 0 when they agree, 1 when not, 2 on bad input. With --diff, writes the differing
pixels in magenta over a faded ACTUAL, for a person to look at.
"""
import argparse
import sys

from PIL import Image, ImageChops


def red_pixels(image):
    return sum(1 for r, g, b in image.getdata() if r >= 180 and g <= 80 and b <= 80)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("actual")
    parser.add_argument("golden")
    parser.add_argument("--channel", type=int, default=48)
    parser.add_argument("--share", type=float, default=0.01)
    parser.add_argument("--diff")
    args = parser.parse_args()
    try:
        actual = Image.open(args.actual).convert("RGB")
        golden = Image.open(args.golden).convert("RGB")
    except OSError as error:
        print(f"compare_png: {error}", file=sys.stderr)
        return 2
    if actual.size != golden.size:
        print(f"size {actual.size[0]}x{actual.size[1]} differs from the golden "
              f"{golden.size[0]}x{golden.size[1]}")
        return 1
    difference = ImageChops.difference(actual, golden)
    # The largest channel difference of each pixel, then thresholded.
    channels = difference.split()
    largest = ImageChops.lighter(ImageChops.lighter(channels[0], channels[1]), channels[2])
    differing_mask = largest.point(lambda v: 255 if v > args.channel else 0)
    differing = differing_mask.histogram()[255]
    total = actual.size[0] * actual.size[1]
    print(f"size {actual.size[0]}x{actual.size[1]} differing {differing} of {total} red {red_pixels(actual)}")
    if args.diff:
        faded = Image.blend(actual, Image.new("RGB", actual.size, "white"), 0.7)
        faded.paste(Image.new("RGB", actual.size, (255, 0, 255)), mask=differing_mask)
        faded.save(args.diff)
    return 0 if differing <= args.share * total else 1


if __name__ == "__main__":
    sys.exit(main())
