first
