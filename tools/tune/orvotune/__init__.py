"""Tunes a skill's parameter file by CMA-ES against a scoring drill."""
