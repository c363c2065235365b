"""Figures that say how good tone-mapped pictures are; scripts/measure-quality is the program."""
