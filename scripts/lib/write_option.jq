# A line on the dataset that one write option made; an error where its frequencies are not those of the results.
def percent: . * 1e7 | round | . / 1e5;
def compared:
  if . == null then "no frequencies to compare"
  else
    ([.modes[:8][].difference | fabs] | max) as $worst
    | if $worst == null or $worst > 0.005 then error("frequencies are not those of the results")
      else "\(.rigid_modes) rigid modes, first 8 elastic within \($worst | percent) %"
      end
  end;
"  \($option | sub("/.*/"; "")): \(.modes | length) modes, \(.nodes) nodes, \(.faces) faces, \(.units.length | ascii_downcase), \(.bytes) bytes; \(.comparison | compared)"
