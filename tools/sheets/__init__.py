"""Drawing of the game's pictures, large and then reduced."""
