"""The game's sounds, one module per kind."""
