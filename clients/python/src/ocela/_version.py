__version__ = "1.3.0"
