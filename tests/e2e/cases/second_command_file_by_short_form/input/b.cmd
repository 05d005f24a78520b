second
