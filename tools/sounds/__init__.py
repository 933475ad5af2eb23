"""What the game sounds like: a module for each kind of thing."""
