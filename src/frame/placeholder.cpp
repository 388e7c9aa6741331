// Goes as soon as the first real source stands in the list.
