# Compares the invariants of a dataset ($found) with the reference of the sample ($reference): closely with the
# lumped masses that another program worked out, and with the continuum within what lumping may change, which
# the reference tells, too.

def size: if . < 0 then -. else . end;

# A line: name, value, reference, and how far the two are apart; "off by" where that is too far.
def line($name; $value; $expected; $allowed):
  ($value - $expected | size) as $apart
  | "  \($name + " " * (30 - ($name | length))) \($value)  reference \($expected)  "
    + (if $apart <= $allowed then "ok, apart \($apart)" else "off by \($apart)" end)
    + ", allowed \($allowed)";

# About the centre: the tensor about the origin less that of the whole mass at the centre.
def about_centre($mass; $c):
  . as $j
  | ($c | map(. * .) | add) as $square
  | [range(3) as $r | [range(3) as $k
      | $j[$r][$k] - $mass * ((if $r == $k then $square else 0 end) - $c[$r] * $c[$k])]];

def properties:
  .mass as $mass | (.first_moment | map(. / $mass)) as $c
  | {mass: $mass, com: $c, inertia_about_com: (.inertia | about_centre($mass; $c))};

["x", "y", "z"] as $axis
| ($found[0].invariants | properties) as $p
| $reference[0].hrz_lumped as $lumped
| $reference[0].mass_properties as $body
| $lumped.inertia_about_com_rel_error_diag as $share
| "lumped masses",
  line("mass"; $p.mass; $lumped.mass; 1e-9 * $lumped.mass),
  (range(3) | line("centre \($axis[.])"; $p.com[.]; $lumped.com[.]; 1e-5)),
  (range(3) as $r | range($r; 3) as $k
    | line("inertia about centre \($axis[$r])\($axis[$k])"; $p.inertia_about_com[$r][$k];
           $lumped.inertia_about_com[$r][$k]; 1e-6)),
  "continuum",
  line("mass"; $p.mass; $body.mass; 1e-6 * $body.mass),
  (range(3) | line("centre \($axis[.])"; $p.com[.]; $body.com[.]; 1.01 * $lumped.com_error_mm)),
  (range(3) | line("inertia about centre \($axis[.])\($axis[.])"; $p.inertia_about_com[.][.];
                   $body.inertia_about_com[.][.]; 1.01 * $share[.] * $body.inertia_about_com[.][.]))
