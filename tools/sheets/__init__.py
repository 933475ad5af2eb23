"""Draws the game's pictures, first large and then reduced."""
